#pragma once

#include <string>

namespace zerva {

class ParsedLine;
struct LibraryUse;

/** Whether a library can be opened and its creator called. @param use null when nobody looked. */
bool makes(const LibraryUse* use);

/**
 * What happens when a library is opened and its creator called, as the predicate of a sentence:
 * "opens lib/libA.so and calls createA".
 *
 * @param use null when nobody looked.
 */
std::string openingWords(const ParsedLine& line, const LibraryUse* use);

/** @returns what the log begins with where that fails; empty when it does not, or nobody is left to
 * log anything. */
std::string openingLog(const LibraryUse* use);

}  // namespace zerva
