#include "framework/ZervaVersion.h"

#include "tests/fakes/Platform.h"

std::string ZervaVersion() {
  zerva::fakes::Trace::record("ZervaVersion()");
  return zerva::fakes::Platform::version();
}
