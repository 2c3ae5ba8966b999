#pragma once

#include <string_view>

namespace zerva {

/** Writes a text to standard output. @returns whether all of it went there; if not, it is told. */
bool print(std::string_view text);

}  // namespace zerva
