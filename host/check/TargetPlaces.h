#pragma once

#include <string>

#include "host/check/CheckOptions.h"
#include "host/check/LibraryTree.h"

namespace zerva {

/**
 * Finds out for which machine files are checked, and where it has its libraries. Reads the
 * environment where the files are for this machine.
 */
LibraryPlaces targetPlaces(const CheckOptions& options);

/** @returns where programs are on that machine, in the form of PATH. */
std::string programPath(const CheckOptions& options);

}  // namespace zerva
