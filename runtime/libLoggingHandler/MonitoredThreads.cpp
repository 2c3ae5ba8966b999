#include "runtime/libLoggingHandler/MonitoredThreads.h"

#include <algorithm>
#include <mutex>

namespace zerva {
namespace {

struct Records {
  std::mutex mutex;
  // Guarded by mutex.
  std::vector<MonitoredThread> threads;
};

/** Never destroyed, since threads may be recorded while the process ends. */
Records& records() {
  static auto* const instance = new Records;
  return *instance;
}

}  // namespace

std::vector<MonitoredThread> MonitoredThreads::list() {
  const std::lock_guard lock(records().mutex);
  return records().threads;
}

void MonitoredThreads::record(const MonitoredThread& thread) {
  const std::lock_guard lock(records().mutex);
  auto& threads = records().threads;
  const auto found = std::find_if(threads.begin(), threads.end(), [&](const MonitoredThread& one) {
    return one.name == thread.name;
  });
  if (found == threads.end()) {
    threads.push_back(thread);
  } else {
    *found = thread;
  }
}

}  // namespace zerva
