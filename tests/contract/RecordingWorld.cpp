#include "tests/contract/ContractWorld.h"
#include "tests/fakes/Platform.h"

namespace zerva::contract {

namespace {

int answer() { return 42; }

}  // namespace

void startAfresh() { fakes::Platform::reset(); }

bool advanceAndSettle(std::chrono::milliseconds time, const std::function<bool()>& until) {
  fakes::Platform::settle();
  fakes::Platform::advance(std::chrono::nanoseconds(time).count());
  fakes::Platform::settle();
  return until();
}

std::string library() {
  const std::string path = "libContract.so";
  fakes::Platform::library(path).symbols["contractAnswer"].address =
      reinterpret_cast<void*>(&answer);
  return path;
}

void programExists(const std::string& /*program*/) {}

void programIsMissing(const std::string& /*program*/) {
  fakes::Platform::answer("Process#1.ID(", 0);
}

}  // namespace zerva::contract
