#pragma once

#include <string>
#include <string_view>

namespace zerva {

/**
 * Appends a text as JSON has it, with quotes. What is no valid UTF-8 becomes the character that
 * stands for such, since names may hold any bytes.
 */
void appendJsonText(std::string& json, std::string_view text);

}  // namespace zerva
