#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "framework/Export.h"

namespace zerva {

/**
 * @returns whether XML 1.0 can hold a text: well-formed UTF-8 (RFC 3629) without the characters
 *     that production 2 of XML leaves out, which are most control characters.
 */
ZERVA_EXPORT bool isXmlText(std::string_view text);

/**
 * @returns the text as it stands in an element or, in double quotes, in an attribute. Leading white
 *     space is written as a reference, since readers drop it between elements.
 */
std::string xmlEscaped(std::string_view text);

/** @returns two lower-case digits for each byte. */
ZERVA_EXPORT std::string hexadecimal(std::string_view bytes);

/** @returns the bytes, or nothing when the text is not pairs of hexadecimal digits. */
ZERVA_EXPORT std::optional<std::string> fromHexadecimal(std::string_view text);

/** How much a parser makes of a text. */
struct XmlShape {
  unsigned depth = 0;     ///< of elements, at most
  std::size_t nodes = 0;  ///< elements and attributes
};

/**
 * Tells what a parser would make of a text, without building anything of it, so that a text that is
 * meant to exhaust its stack or the memory never gets there.
 *
 * @returns nothing when the text has a comment, a character-data section or a document type, or
 *     holds a zero byte: calls have none of these.
 */
ZERVA_EXPORT std::optional<XmlShape> xmlShape(std::string_view text);

}  // namespace zerva
