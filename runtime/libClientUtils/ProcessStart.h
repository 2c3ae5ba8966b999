#pragma once

namespace zerva {

/**
 * Starts a program in a process group of its own, with default signal dispositions, an empty signal
 * mask and no descriptors but the standard three. Parameters as for `Process`.
 *
 * @param id gets the process's id.
 * @returns 0, or the error for which nothing was started.
 */
int startProcess(char** argv, char** envp, const char* directory, int& id);

}  // namespace zerva
