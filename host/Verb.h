#pragma once

#include <functional>

namespace zerva {

/**
 * Does what the command line asks for that brings nothing up, and returns the code to exit with.
 * Signals end it as they end any program.
 */
using Verb = std::function<int()>;

}  // namespace zerva
