#pragma once

#include <string>
#include <vector>

#include "host/check/Finding.h"

namespace zerva {

/**
 * Looks a directive file over for what would hang a start or end it half way. Starts nothing and
 * changes nothing.
 *
 * @returns everything of that kind, from the first line to the last. A file that is missing or
 *     cannot be read gives nothing: the configurator tells that itself.
 */
std::vector<Finding> checkDirectiveFile(const std::string& path);

/** @returns the finding as compilers write theirs. */
std::string formatFinding(const Finding& finding);

}  // namespace zerva
