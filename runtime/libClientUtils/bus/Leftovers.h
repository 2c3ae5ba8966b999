#pragma once

#include <string>

#include "runtime/libClientUtils/bus/BusDirectory.h"

namespace zerva {

/**
 * Removes what a process has left in the directory, if it has ended.
 *
 * @returns false when it lives.
 */
bool removeLeftover(const BusDirectory& directory, const std::string& id);

/** Removes what processes that have ended have left in the directory. */
void removeLeftovers(const BusDirectory& directory);

}  // namespace zerva
