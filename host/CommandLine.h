#pragma once

#include <variant>

#include "host/ExitCode.h"
#include "host/RunOptions.h"
#include "host/Verb.h"

namespace zerva {

/** What the command line asks for. */
using Wanted = std::variant<RunOptions, Verb, ExitCode>;

/**
 * Reads the command line. Help and version go to standard output, errors to standard error.
 *
 * @returns what is to be done, or with which code to end since nothing is.
 */
Wanted readCommandLine(int argc, const char* const* argv);

}  // namespace zerva
