#include "framework/ZervaVersion.h"

#include "tests/fakes/Trace.h"

std::string ZervaVersion() {
  zerva::fakes::Trace::record("ZervaVersion()");
  return "7.8.9-recording";
}
