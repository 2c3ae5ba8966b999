#pragma once

#include <string>
#include <string_view>

#include "framework/Export.h"

namespace zerva {

/**
 * Appends a text as JSON has it, with quotes. What is no valid UTF-8 becomes the character that
 * stands for such, since names may hold any bytes.
 */
ZERVA_EXPORT void appendJsonText(std::string& json, std::string_view text);

/** @returns the text with what is no valid UTF-8 replaced by the character that stands for such. */
ZERVA_EXPORT std::string validUtf8(std::string_view text);

}  // namespace zerva
