#include "runtime/libClientUtils/Lookups.h"

#include <atomic>

namespace zerva {

namespace {

constinit std::atomic<std::uint32_t> ended{0};

}  // namespace

std::uint32_t Lookups::age() { return ended.load(std::memory_order_acquire); }

void Lookups::somethingEnded() { ended.fetch_add(1, std::memory_order_acq_rel); }

}  // namespace zerva
