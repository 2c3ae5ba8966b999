#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/**
 * What every fuzz target defines: looks at one input. Whatever the bytes are, it returns 0; a
 * failure ends the process, and so does an exception that gets out.
 */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace zerva::fuzz {

/** @returns the bytes of an input as a text. */
std::string_view textOf(const std::uint8_t* data, std::size_t size);

/** Takes the text up to the first line feed off the front of a text. */
std::string_view takeLine(std::string_view& text);

/** Ends the process, saying which promise was not kept, unless it was. */
void require(bool kept, const char* promise);

}  // namespace zerva::fuzz
