#pragma once

#include <string>
#include <vector>

#include "host/explain/FileExplanation.h"

namespace zerva {

/**
 * @param lines those of the file that are to be shown.
 * @returns them for a person, and, where they are all that the file has, what they come to.
 */
std::string explanationAsText(const FileExplanation& file,
                              const std::vector<LineExplanation>& lines);

/** @returns the same for a program: one JSON object. */
std::string explanationAsJson(const FileExplanation& file,
                              const std::vector<LineExplanation>& lines);

}  // namespace zerva
