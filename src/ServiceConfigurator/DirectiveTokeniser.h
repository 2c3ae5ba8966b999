#pragma once

#include <string>
#include <vector>

namespace zerva {

/**
 * Cuts a line of the form keyword ":" fields, after its spacing was normalised. Any thread may call
 * it.
 *
 * @param line the text; not necessarily terminated.
 * @param length how many characters of it count.
 * @param separators each of its characters separates fields.
 * @returns the keyword and at least four fields, missing ones being empty; only "comment" for a
 *     line that begins with "#"; nothing for a line without a colon.
 */
std::vector<std::string> tokeniseDirective(const char* line, int length,
                                           const std::string& separators);

}  // namespace zerva
