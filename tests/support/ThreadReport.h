#pragma once

namespace zerva {

/**
 * Writes to standard error what each thread of this process is doing: name, state, what it waits
 * for in the kernel, and its call stack as far as it can be walked.
 *
 * Interrupts every thread with a signal to get at its stack, so it is for the moment before the
 * end. Blocks for at most about a second for each thread.
 */
void reportThreads();

}  // namespace zerva
