#include "runtime/libServiceExecutor/Progress.h"

#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"

namespace zerva {

std::vector<ExecutorProgress> executorProgress() {
  std::vector<ExecutorProgress> all;
  for (const auto& core : LiveExecutors::all()) {
    all.push_back(core->progress());
  }
  return all;
}

}  // namespace zerva
