#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zerva {

/**
 * @param source the text of a C++ source.
 * @returns it with comments and the insides of string and character literals made blank; line ends
 *     stay.
 */
std::string codeOnly(const std::string& source);

/**
 * @param code what `codeOnly` gave.
 * @param words words, and prefixes of words when they end in a star.
 * @returns those of them that stand in the code as words of their own.
 */
std::vector<std::string> findWords(const std::string& code, const std::vector<std::string>& words);

/** @returns what a source includes, without quotes or brackets. */
std::vector<std::string> includesOf(const std::string& source);

/** @returns all C++ sources and headers below a folder of the tree; the tree is named by
 * ZERVA_SOURCE_DIR. */
std::vector<std::filesystem::path> sourcesBelow(const std::string& folder);

}  // namespace zerva
