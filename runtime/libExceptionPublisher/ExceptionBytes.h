#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zerva {

/**
 * Writes a message in the form in which exceptions travel: the four bytes "ZEXC", a byte with the
 * version of the form (1), the length of the message as four bytes with the highest first, and the
 * message.
 *
 * @param message any bytes; what exceeds the length field is cut off.
 */
std::string encodeExceptionMessage(std::string_view message);

/** @returns the message, or nothing when the bytes are not exactly one message in that form. */
std::optional<std::string> decodeExceptionMessage(std::string_view bytes);

}  // namespace zerva
