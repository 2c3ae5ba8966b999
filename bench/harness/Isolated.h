#pragma once

#include <functional>
#include <vector>

namespace zerva::bench {

/** What one measurement gives: one figure or several, in an order that the measurement says. */
using Figures = std::vector<double>;

/**
 * Runs a measurement in a process of its own, so that nothing of an earlier one, no thread, no
 * loaded library and no piece of the heap, is in its way. Called while this process has one thread.
 *
 * @param processors to how many processors the process and its threads are pinned.
 * @returns what the measurement gave.
 * @throws std::runtime_error when the measurement threw, with its text, or when its process died.
 */
Figures measureApart(int processors, const std::function<Figures()>& measure);

/** @returns how many processors this process may use. */
int processorsHere();

/** Pins the calling thread, and those that it starts later, to that many processors at most. */
void pinTo(int processors);

/** How long a measurement may take until its process is ended. */
constexpr unsigned kLongestSeconds = 100;

}  // namespace zerva::bench
