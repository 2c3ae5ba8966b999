#include "tests/support/Watchdog.h"

#include <pthread.h>
#include <unistd.h>

#include <cstdio>

#include "tests/support/ChildProcess.h"
#include "tests/support/ThreadReport.h"

namespace zerva {

Watchdog::Watchdog() : thread{[this] { watch(); }} {
  pthread_setname_np(thread.native_handle(), "test-watchdog");
}

Watchdog::~Watchdog() {
  {
    const std::lock_guard lock{mutex};
    over = true;
    changed.notify_all();
  }
  thread.join();
}

void Watchdog::set(const std::string& what, std::chrono::milliseconds limit) {
  const std::lock_guard lock{mutex};
  watched = what;
  end = std::chrono::steady_clock::now() + limit;
  armed = true;
  changed.notify_all();
}

void Watchdog::release() {
  const std::lock_guard lock{mutex};
  armed = false;
  changed.notify_all();
}

void Watchdog::watch() {
  std::unique_lock lock{mutex};
  while (!over) {
    if (!armed) {
      changed.wait(lock);
      continue;
    }
    changed.wait_until(lock, end);
    if (!armed || over || std::chrono::steady_clock::now() < end) continue;
    std::fflush(stdout);
    std::fprintf(stderr, "\nwatchdog: %s hangs; its threads:\n", watched.c_str());
    reportThreads();
    ChildProcess::killAll();
    // Nothing else is safe: whatever a destructor or an exit handler would wait for hangs.
    _exit(exitCode);
  }
}

}  // namespace zerva
