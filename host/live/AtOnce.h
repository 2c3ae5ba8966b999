#pragma once

#include <cstddef>
#include <functional>

namespace zerva {

/** How many may be done at once: their stacks fit into the memory of 32 bits, too. */
inline constexpr std::size_t kMostAtOnce = 64;

/**
 * Does something so many times, as many of them at once as there may be and as there are threads
 * for, and at least one after the other; waits for the last one.
 *
 * @param work is given a number each, from 0 on. It throws nothing.
 */
void doAtOnce(std::size_t count, const std::function<void(std::size_t)>& work);

}  // namespace zerva
