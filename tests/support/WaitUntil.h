#pragma once

#include <chrono>
#include <functional>

#include "tests/support/Patience.h"

namespace zerva {

/**
 * Waits until a condition holds, asking for it again and again on the calling thread.
 *
 * `ASSERT_TRUE(waitUntil([&] { return counter == 3; }));`
 *
 * @param condition Asked at least once, and once more after the deadline.
 * @param deadline How long to wait at most.
 * @returns true as soon as the condition held; false when it never did.
 */
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds deadline = patience());

}  // namespace zerva
