#pragma once

#include <variant>

#include "host/ExitCode.h"
#include "host/RunOptions.h"

namespace zerva {

/**
 * Reads the command line. Help and version go to standard output, errors to standard error.
 *
 * @returns what is to be done, or with which code to end since nothing is.
 */
std::variant<RunOptions, ExitCode> readCommandLine(int argc, const char* const* argv);

}  // namespace zerva
