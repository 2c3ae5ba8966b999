#include "host/notify/StuckExecutors.h"

#include <utility>

namespace zerva {

std::vector<std::string> StuckExecutors::look(const std::vector<ExecutorProgress>& executors,
                                              Clock::time_point now) {
  std::vector<std::string> stuck;
  std::map<std::uint64_t, Standstill> standing;  // what is not seen again is forgotten
  for (const ExecutorProgress& executor : executors) {
    if (executor.queued == 0) continue;
    const auto before = standing_.find(executor.id);
    const bool moved = before == standing_.end() || before->second.begun != executor.begun;
    const auto since = moved ? now : before->second.since;
    standing.emplace(executor.id, Standstill{executor.begun, since});
    if (now - since >= patience_) stuck.push_back(executor.description);
  }
  standing_ = std::move(standing);
  return stuck;
}

}  // namespace zerva
