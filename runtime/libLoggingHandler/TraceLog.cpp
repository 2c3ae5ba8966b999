#include "framework/TraceLog.h"

#include "framework/Logging.h"
#include "runtime/libLoggingHandler/MonitoredThreads.h"

namespace {

constexpr char kModule[] = "Trace Log";
constexpr char kSource[] = "runtime/libLoggingHandler";
constexpr int kInformation = 4;

}  // namespace

TraceLog TraceLog::_instance;

void TraceLog::logPMon_start(int threadId, const char* name, int /*argc*/, char** /*argv*/,
                             char** /*envp*/, bool flag) {
  const char* const shown = name == nullptr ? "" : name;
  zerva::MonitoredThreads::record({threadId, shown, flag});
  if (!loggingOnAppUni(kModule, kInformation)) return;
  logAppUni(kModule, kSource, kInformation, __LINE__, "Thread %d is monitored as '%s' (%s)",
            threadId, shown, flag ? "alive" : "not alive");
}
