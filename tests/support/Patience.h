#pragma once

#include <chrono>

namespace zerva {

/**
 * How long a test waits for something that must happen before it calls that a failure.
 *
 * Generous on purpose: it is only waited out by a test that fails, and a machine that is busy with
 * other tests, or a program that is instrumented, is slow. Never a bound on how fast something is.
 *
 * @returns The time, longer under a sanitizer. Always less than what the watchdog allows a test.
 */
std::chrono::milliseconds patience();

}  // namespace zerva
