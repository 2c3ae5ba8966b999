#include "runtime/libServiceExecutor/Drain.h"

#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"

namespace zerva {
namespace {

std::vector<std::shared_ptr<ExecutorCore>> allBut(const std::string& channel) {
  auto cores = LiveExecutors::all();
  if (!channel.empty()) {
    std::erase_if(cores, [&](const auto& core) { return core->channelName() == channel; });
  }
  return cores;
}

}  // namespace

DrainResult drainExecutors(std::chrono::milliseconds deadline, const std::string& but) {
  const auto until = Clock::now() + deadline;
  const auto cores = allBut(but);
  for (const auto& core : cores) {
    core->shutdown();
  }
  DrainResult result{true, {}};
  for (const auto& core : cores) {
    if (!core->isIdle() && !core->waitUntilIdle(until)) {
      result.complete = false;
      result.underWay.push_back(core->description());
    }
  }
  return result;
}

std::vector<std::string> executorsUnderWay(const std::string& but) {
  std::vector<std::string> underWay;
  for (const auto& core : allBut(but)) {
    if (!core->isIdle()) {
      underWay.push_back(core->description());
    }
  }
  return underWay;
}

}  // namespace zerva
