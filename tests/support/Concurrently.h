#pragma once

#include <cstddef>
#include <functional>

namespace zerva {

/**
 * Runs a body on several threads that start it at the same moment, and waits for all of them.
 *
 * @param threads How many threads; at least 1.
 * @param body Called once on each, with the thread's number from 0 on.
 * @throws The first exception that left a body, after all threads have ended.
 */
void concurrently(std::size_t threads, const std::function<void(std::size_t thread)>& body);

}  // namespace zerva
