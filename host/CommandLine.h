#pragma once

#include <variant>

#include "host/ExitCode.h"
#include "host/RunOptions.h"
#include "host/check/CheckOptions.h"

namespace zerva {

/** What was asked for; or, since nothing is to be done, with which code to end. */
using Command = std::variant<RunOptions, CheckOptions, LoadOptions, ExitCode>;

/**
 * Reads the command line. Help and version go to standard output, errors to standard error.
 *
 * @returns what is to be done, or with which code to end since nothing is.
 */
Command readCommandLine(int argc, const char* const* argv);

}  // namespace zerva
