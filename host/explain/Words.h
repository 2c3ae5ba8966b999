#pragma once

#include <string>
#include <vector>

namespace zerva {

class ParsedLine;
struct Word;

/** @returns the words as a sentence has them: "A", "A and B", "A, B and C". */
std::string listed(const std::vector<std::string>& words);

/** @returns the texts of words of a line. */
std::vector<std::string> textsOf(const std::vector<Word>& words);

/** @returns the text with a capital letter at its beginning. */
std::string capitalised(std::string text);

/** @returns a number with what it counts: "1 line", "2 lines". */
std::string counted(std::size_t number, const std::string& what);

/** @returns "line 7". */
std::string lineNumber(const ParsedLine& line);

}  // namespace zerva
