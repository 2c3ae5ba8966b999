#pragma once

#include <memory>
#include <vector>

class ServiceExecutor;

namespace zerva {

class ExecutorCore;

/** The executors of the process, whoever knows them. Any thread. */
class LiveExecutors {
 public:
  static void add(const ServiceExecutor* executor, std::shared_ptr<ExecutorCore> core);
  static void remove(const ServiceExecutor* executor);
  static std::vector<std::shared_ptr<ExecutorCore>> all();

  /** @returns the inside of an executor, or null. */
  static std::shared_ptr<ExecutorCore> coreOf(const ServiceExecutor* executor);
};

}  // namespace zerva
