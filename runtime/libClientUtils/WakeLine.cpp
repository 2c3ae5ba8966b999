#include "runtime/libClientUtils/WakeLine.h"

#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>
#include <vector>

#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {
namespace {

/** Those that nobody has now. Never destroyed: threads may outlive main. */
struct Unused {
  std::mutex mutex;
  std::vector<int> descriptors;

  static Unused& instance() {
    static auto* const unused = new Unused;
    return *unused;
  }
};

int obtain() {
  Unused& unused = Unused::instance();
  const std::lock_guard lock(unused.mutex);
  if (unused.descriptors.empty()) {
    return ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  }
  const int descriptor = unused.descriptors.back();
  unused.descriptors.pop_back();
  return descriptor;
}

}  // namespace

WakeLine::WakeLine() : descriptor_(obtain()) {}

WakeLine::~WakeLine() {
  if (descriptor_ < 0) return;
  // Without memory it stays open and is not used again.
  exceptionOf([this] {
    Unused& unused = Unused::instance();
    const std::lock_guard lock(unused.mutex);
    unused.descriptors.push_back(descriptor_);
  });
}

// By the system calls themselves, in which no thread is cancelled: a wake that is lost would never
// be made up for, since whoever comes next finds the thread unparked already.

void WakeLine::wake(int descriptor) {
  const eventfd_t once = 1;
  ::syscall(SYS_write, descriptor, &once, sizeof once);
}

void WakeLine::forget(int descriptor) {
  eventfd_t ignored = 0;
  ::syscall(SYS_read, descriptor, &ignored, sizeof ignored);
}

}  // namespace zerva
