#pragma once

#include <string>
#include <vector>

namespace zerva {

/** @returns the directory lib beside the one that the executable is in, when there is one. */
std::vector<std::string> defaultLibraryDirectories();

}  // namespace zerva
