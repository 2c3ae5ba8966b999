#include "runtime/libClientUtils/ThreadSettings.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>

namespace zerva {
namespace {

constexpr std::size_t kFirstDefault = 256 * 1024;

// The sanitizers surround every variable with room of their own and keep their state on the stack.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kInstrumentation = 4;
#else
constexpr std::size_t kInstrumentation = 1;
#endif

std::atomic<std::size_t> defaultSize{kFirstDefault};

std::size_t systemValue(int name, std::size_t otherwise) {
  const long value = ::sysconf(name);
  return value > 0 ? static_cast<std::size_t>(value) : otherwise;
}

}  // namespace

void ThreadSettings::setDefaultStackSize(std::size_t bytes) {
  defaultSize.store(bytes == 0 ? kFirstDefault : bytes, std::memory_order_relaxed);
}

std::size_t ThreadSettings::defaultStackSize() {
  return defaultSize.load(std::memory_order_relaxed);
}

std::size_t ThreadSettings::stackSize(std::size_t requested) {
  constexpr std::size_t kUsualLeast = 16 * 1024;
  constexpr std::size_t kUsualPage = 4096;
  const std::size_t least = systemValue(_SC_THREAD_STACK_MIN, kUsualLeast);
  const std::size_t page = systemValue(_SC_PAGESIZE, kUsualPage);
  const std::size_t wanted = requested == 0 ? defaultStackSize() : requested;
  const std::size_t bytes = std::max(least, wanted) * kInstrumentation;
  return (bytes + page - 1) / page * page;
}

}  // namespace zerva
