#include "framework/TraceLog.h"

#include <string>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Text.h"

TraceLog TraceLog::_instance;

void TraceLog::logPMon_start(int threadId, const char* name, int argc, char** argv, char** envp,
                             bool flag) {
  zerva::fakes::Trace::record(
      std::string(this == &_instance ? "TraceLog" : "another TraceLog") + ".logPMon_start(" +
      std::to_string(threadId) + ", " + zerva::fakes::inQuotes(name) + ", " + std::to_string(argc) +
      ", " + zerva::fakes::Objects::name(argv) + ", " + zerva::fakes::Objects::name(envp) + ", " +
      (flag ? "true" : "false") + ")");
}
