#pragma once

#include <string>

namespace zerva {

/** @returns the name of a signal as people know it, for instance "SIGTERM". */
std::string signalName(int number);

}  // namespace zerva
