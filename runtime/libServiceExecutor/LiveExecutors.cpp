#include "runtime/libServiceExecutor/LiveExecutors.h"

#include <mutex>
#include <unordered_map>
#include <utility>

namespace zerva {

namespace {

struct List {
  std::mutex mutex;
  std::unordered_map<const ServiceExecutor*, std::shared_ptr<ExecutorCore>> cores;  // by mutex
};

List& list() {
  // Never destroyed: executors may be left when static objects go.
  static List& live = *new List;
  return live;
}

}  // namespace

void LiveExecutors::add(const ServiceExecutor* executor, std::shared_ptr<ExecutorCore> core) {
  const std::lock_guard lock(list().mutex);
  list().cores.emplace(executor, std::move(core));
}

void LiveExecutors::remove(const ServiceExecutor* executor) {
  std::shared_ptr<ExecutorCore> removed;  // released after the lock
  const std::lock_guard lock(list().mutex);
  const auto found = list().cores.find(executor);
  if (found != list().cores.end()) {
    removed = std::move(found->second);
    list().cores.erase(found);
  }
}

std::vector<std::shared_ptr<ExecutorCore>> LiveExecutors::all() {
  const std::lock_guard lock(list().mutex);
  std::vector<std::shared_ptr<ExecutorCore>> cores;
  for (const auto& [executor, core] : list().cores) {
    cores.push_back(core);
  }
  return cores;
}

std::shared_ptr<ExecutorCore> LiveExecutors::coreOf(const ServiceExecutor* executor) {
  const std::lock_guard lock(list().mutex);
  const auto found = list().cores.find(executor);
  return found != list().cores.end() ? found->second : nullptr;
}

}  // namespace zerva
