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

}  // namespace zerva
