#include "framework/Threader.h"

#include "framework/Threadable.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/PlatformInternal.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::Objects;

namespace {
constexpr unsigned long kThread = 815;
}

Threader::Threader() { zerva::fakes::constructed(this, "Threader", {}); }

Threader::~Threader() { Objects::died(this); }

bool Threader::spawn(unsigned long* threadId, Threadable* body, std::string name,
                     ThreadPriority priority, int stackSize) {
  const std::string call = Objects::name(this) + ".spawn(";
  zerva::fakes::called(this, "spawn",
                       {Objects::name(body), zerva::fakes::inQuotes(name),
                        std::to_string(static_cast<int>(priority)), std::to_string(stackSize)});
  if (zerva::fakes::Platform::answerOf(call, 1) == 0) return false;
  *threadId = kThread;
  // The body runs when the test lets the other threads go on.
  auto ran = std::make_shared<bool>(false);
  zerva::fakes::Turn::whenSettled(body, [body, ran] {
    if (*ran) return false;
    *ran = true;
    const zerva::fakes::Nested nested;
    body->run();
    return true;
  });
  return true;
}
