#include "runtime/libClientUtils/Futex.h"

#include <linux/futex.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace zerva {
namespace {

static_assert(sizeof(std::atomic<std::uint32_t>) == sizeof(std::uint32_t) &&
              std::atomic<std::uint32_t>::is_always_lock_free);

/** As the plain system call has it; seconds since the machine was started fit into 32 bits. */
struct KernelTime {
  long seconds;
  long nanoseconds;
};

KernelTime kernelTime(std::chrono::steady_clock::time_point time) {
  const auto since = time.time_since_epoch();
  const auto seconds = std::chrono::floor<std::chrono::seconds>(since);
  constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
  return {static_cast<long>(std::min<std::int64_t>(seconds.count(), most)),
          static_cast<long>(std::chrono::nanoseconds(since - seconds).count())};
}

}  // namespace

bool sleepWhile(const std::atomic<std::uint32_t>& word, std::uint32_t value,
                const std::chrono::steady_clock::time_point* deadline) {
  const KernelTime until = deadline != nullptr ? kernelTime(*deadline) : KernelTime{};
  // With a bitset the time is a point of the steady clock, and no duration.
  const long result =
      syscall(SYS_futex, &word, FUTEX_WAIT_BITSET_PRIVATE, value,
              deadline != nullptr ? &until : nullptr, nullptr, FUTEX_BITSET_MATCH_ANY);
  return result == 0 || errno != ETIMEDOUT;
}

void wakeOne(const std::atomic<std::uint32_t>& word) {
  syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void prepareForManySleepers() {
  // Of Linux 6.16; the headers may be older.
  constexpr int kFutexHash = 78;
  constexpr unsigned long kSetSlots = 1;
  constexpr unsigned long kGetSlots = 2;
  // 64 KiB of the system's memory, and lists of ten for 10,000 threads.
  constexpr unsigned long kSlots = 1024;
  // There are none as long as the process has one thread. A system that knows none fails.
  if (::prctl(kFutexHash, kGetSlots, 0UL, 0UL, 0UL) != 0) return;
  ::prctl(kFutexHash, kSetSlots, kSlots, 0UL, 0UL);
}

}  // namespace zerva
