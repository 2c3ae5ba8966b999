#include "runtime/libServiceExecutor/Drain.h"

#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"

namespace zerva {

DrainResult drainExecutors(std::chrono::milliseconds deadline) {
  const auto until = Clock::now() + deadline;
  const auto cores = LiveExecutors::all();
  for (const auto& core : cores) {
    core->shutdown();
  }
  DrainResult result{true, {}};
  for (const auto& core : cores) {
    if (!core->waitUntilIdle(until)) {
      result.complete = false;
      result.underWay.push_back(core->description());
    }
  }
  return result;
}

std::vector<std::string> executorsUnderWay() {
  std::vector<std::string> underWay;
  for (const auto& core : LiveExecutors::all()) {
    if (!core->waitUntilIdle(Clock::now())) {
      underWay.push_back(core->description());
    }
  }
  return underWay;
}

}  // namespace zerva
