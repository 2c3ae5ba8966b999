#include "runtime/libClientUtils/trace/SeenCalls.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <new>

namespace zerva {
namespace {

struct Counted {
  CallTally tally{SeenCalls::kMost};
  std::atomic<std::uint64_t> others{0};
  std::atomic<std::uint64_t> failedOthers{0};
};

/** @returns the one; never destroyed, since threads may still call while the process ends. */
Counted& counted() {
  alignas(Counted) static std::array<std::byte, sizeof(Counted)> place;
  static auto* const one = new (place.data()) Counted;
  return *one;
}

}  // namespace

void SeenCalls::start() noexcept {
  stop();
  Counted& all = counted();
  all.tally.clear();
  all.others.store(0, std::memory_order_relaxed);
  all.failedOthers.store(0, std::memory_order_relaxed);
  Trace::want(Trace::kSeenCalls);
}

void SeenCalls::stop() noexcept { Trace::wantNoMore(Trace::kSeenCalls); }

void SeenCalls::add(unsigned which, const CallKey& key, std::int64_t duration,
                    bool failed) noexcept {
  Counted& all = counted();
  if (all.tally.add(which, key, duration, failed)) return;
  all.others.fetch_add(1, std::memory_order_relaxed);
  if (failed) all.failedOthers.fetch_add(1, std::memory_order_relaxed);
}

void SeenCalls::visit(const CallTally::Visit& visit) { counted().tally.visitAll(visit); }

SeenCalls::Others SeenCalls::others() noexcept {
  const Counted& all = counted();
  return {all.others.load(std::memory_order_relaxed),
          all.failedOthers.load(std::memory_order_relaxed)};
}

}  // namespace zerva
