#pragma once

#include <signal.h>

#include "host/ExitCode.h"
#include "host/RunOptions.h"

namespace zerva {

/**
 * Runs a host in the foreground until it is to end. Blocks meanwhile.
 *
 * @param options what to run, and how.
 * @param signals what `blockEndingSignals` returned.
 * @returns how it went. Does not return when a second signal ends the process, or when requests are
 *     still under way at the end: then the process ends here, its logs and output written out.
 */
ExitCode run(const RunOptions& options, const sigset_t& signals);

}  // namespace zerva
