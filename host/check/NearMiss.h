#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zerva {

/**
 * How many characters have to be put in, left out, replaced, or exchanged with their neighbour to
 * make one text of another. Capital and small letters of ASCII count as the same.
 */
std::size_t editDistance(const std::string& left, const std::string& right);

/**
 * @returns that of the names which was probably meant by a text: the nearest one, when it is near
 *     enough for its length and is not the text itself; empty when there is none. Of two that are
 * as near the first.
 */
std::string nearMiss(const std::string& text, const std::vector<std::string>& names);

/**
 * The same for the names of interfaces, of which families are often alike: without the "Ifc" that
 * nearly all of them end in and that so says nothing, and two letters off at most.
 */
std::string nearInterface(const std::string& text, const std::vector<std::string>& names);

/** @returns the text with small letters only. */
std::string lowered(const std::string& text);

}  // namespace zerva
