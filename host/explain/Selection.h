#pragma once

#include <string>
#include <variant>
#include <vector>

#include "host/check/ParsedLine.h"
#include "host/explain/FileExplanation.h"

namespace zerva {

/**
 * Picks the lines that somebody asks for.
 *
 * @param wanted the number of a line, or the name of an interface, a channel, a library (with or
 *     without its directory), a creator or a program; empty for all lines.
 * @returns the lines; or, when there are none, why not: a sentence.
 */
std::variant<std::vector<LineExplanation>, std::string> selectLines(const FileExplanation& file,
                                                                    const std::string& wanted);

/** @returns all that a line can be asked for by, besides its number. */
std::vector<std::string> namesOf(const LineExplanation& explained);

}  // namespace zerva
