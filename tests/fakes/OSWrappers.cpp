#include "framework/OSWrappers.h"

#include "tests/fakes/Platform.h"

namespace {
constexpr int kThread = 4711;
}

int OSWrappers::curID() {
  zerva::fakes::Trace::record("curID()");
  return static_cast<int>(zerva::fakes::Platform::answerOf("curID()", kThread));
}
