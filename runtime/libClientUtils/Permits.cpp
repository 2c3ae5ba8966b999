#include "runtime/libClientUtils/Permits.h"

#include <algorithm>
#include <cstdint>

#include "runtime/libClientUtils/Futex.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace zerva {

Permits::Permits(int free, int maximum)
    : maximum_(static_cast<std::uint32_t>(std::max(0, maximum))),
      word_(static_cast<std::uint32_t>(std::max(0, free))) {}

bool Permits::take(int timeout) {
  if (takeFree(0)) return true;
  if (timeout == 0) return false;
  const std::int64_t begin = Trace::begin();
  bool taken = false;
  if (timeout < 0) {
    taken = await(nullptr);
  } else {
    // A deadline of this clock does not move when somebody sets the time of day.
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeout);
    taken = await(&deadline);
  }
  if (begin != 0 && Trace::worksForOneComingUp()) {
    TraceEvent(TraceKind::Waited).since(begin).with(TraceKey::For, "semaphore").write();
  }
  return taken;
}

bool Permits::give() {
  std::uint32_t word = word_.load(std::memory_order_relaxed);
  do {
    if ((word & ~kSleepers) >= maximum_) return false;
  } while (!word_.compare_exchange_weak(word, (word & ~kSleepers) + 1, std::memory_order_acq_rel,
                                        std::memory_order_relaxed));
  // From here on the object may be gone: its address is all that is used, and a thread that is
  // woken by mistake sleeps again.
  if ((word & kSleepers) != 0) wakeOne(word_);
  return true;
}

/**
 * @param mark what is set in the word then: `kSleepers` by one who has slept.
 * @returns false when none is free.
 */
bool Permits::takeFree(std::uint32_t mark) {
  std::uint32_t word = word_.load(std::memory_order_relaxed);
  do {
    if ((word & ~kSleepers) == 0) return false;
  } while (!word_.compare_exchange_weak(word, (word - 1) | mark, std::memory_order_acq_rel,
                                        std::memory_order_relaxed));
  // Whoever gave the others may have found no mark, since this thread had been woken already.
  if (mark != 0 && (word & ~kSleepers) > 1) wakeOne(word_);
  return true;
}

bool Permits::await(const Clock::time_point* deadline) {
  bool inTime = true;
  while (!takeFree(kSleepers)) {
    // One whose time runs out while it sleeps was not woken, so it stands for nobody.
    if (!inTime) return false;
    std::uint32_t none = 0;
    if (word_.compare_exchange_strong(none, kSleepers, std::memory_order_relaxed) ||
        none == kSleepers) {
      inTime = sleepWhile(word_, kSleepers, deadline);
    }
  }
  return true;
}

}  // namespace zerva
