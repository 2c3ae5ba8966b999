#include "tests/support/Concurrently.h"

#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/support/Barrier.h"

namespace zerva {

void concurrently(std::size_t threads, const std::function<void(std::size_t thread)>& body) {
  Barrier start{threads};
  std::mutex mutex;
  std::exception_ptr first;
  std::vector<std::jthread> running;
  running.reserve(threads);
  for (std::size_t thread = 0; thread < threads; ++thread) {
    running.emplace_back([&, thread] {
      start.arriveAndWait();
      try {
        body(thread);
      } catch (...) {
        const std::lock_guard lock{mutex};
        if (!first) first = std::current_exception();
      }
    });
  }
  running.clear();
  if (first) std::rethrow_exception(first);
}

}  // namespace zerva
