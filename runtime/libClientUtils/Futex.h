#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

#include "framework/Export.h"

namespace zerva {

/**
 * Sleeps until somebody wakes those that sleep on a word, unless the word holds another value
 * already. May return without a reason.
 *
 * @param deadline when to return at the latest; null for never.
 * @returns false when the deadline came.
 */
ZERVA_EXPORT bool sleepWhile(const std::atomic<std::uint32_t>& word, std::uint32_t value,
                             const std::chrono::steady_clock::time_point* deadline);

/** Wakes one of those that sleep on a word, of which only the address is used. */
ZERVA_EXPORT void wakeOne(const std::atomic<std::uint32_t>& word);

/**
 * Asks the system for a table of sleeping threads that fits thousands of them; by itself it takes a
 * small one, where each wake then looks through long lists. To be called before the process has a
 * second thread; does nothing later, since the change would then take some 20 milliseconds, and
 * nothing on a system without such tables.
 */
ZERVA_EXPORT void prepareForManySleepers();

}  // namespace zerva
