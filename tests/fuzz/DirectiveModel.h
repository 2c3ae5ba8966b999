#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zerva::fuzz {

// The rules for directive lines once more, character by character and without a thought for speed,
// so that each rule can be found again. The locale is the classic one.

/**
 * The words of a text, which are its runs of other characters than blank, tab, line feed, vertical
 * tab, form feed and carriage return; with one blank behind each but the last, and with none behind
 * a first word whose first colon is its last character.
 */
std::string normalisedByTheRules(std::string_view text);

/**
 * The normalised text, cut:
 * - one that begins with a hash is the single token "comment",
 * - one without a colon is no token,
 * - else what stands before the first colon, and then the fields: each separator character ends
 *   one, and so does the end; at last empty ones, until there are five tokens.
 */
std::vector<std::string> tokensByTheRules(std::string_view text, std::string_view separators);

}  // namespace zerva::fuzz
