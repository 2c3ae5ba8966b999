#pragma once

#include <chrono>
#include <string>

#include "host/check/CheckOptions.h"

namespace zerva {

/**
 * Opens a library in a process of its own, looks its creator up and closes it again. Whatever the
 * library does on the way, this process is not touched. Waits until that is over, or the time.
 *
 * @param program the host's executable, which is started for this.
 * @returns why it failed, as an end of a sentence; empty when it did not.
 */
std::string loadForReal(const std::string& program, const LoadOptions& options,
                        std::chrono::milliseconds longest);

/** What the process of its own does. @returns its exit code. */
int openForReal(const LoadOptions& options);

}  // namespace zerva
