#include "runtime/libClientUtils/Permits.h"

#include <algorithm>
#include <cstdint>

#include "runtime/libClientUtils/trace/TraceEvent.h"

namespace zerva {

Permits::Permits(int free, int maximum)
    : maximum_(static_cast<std::uint32_t>(std::max(0, maximum))),
      word_(static_cast<std::uint32_t>(std::max(0, free))) {}

bool Permits::waitFor(int timeout) {
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
