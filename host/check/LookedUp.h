#pragma once

#include <optional>
#include <set>
#include <string>

namespace zerva {

/**
 * Reads from the trace of a run which interfaces somebody looked up. Lines that are no such event,
 * or cut off, are passed over.
 *
 * @returns their names; nothing when the file cannot be read.
 */
std::optional<std::set<std::string>> readLookedUp(const std::string& path);

}  // namespace zerva
