#pragma once

#include <string>

namespace zerva::bench {

/** @returns the path of a new directory, the caller's to remove. */
std::string makeTempDirectory();

}  // namespace zerva::bench
