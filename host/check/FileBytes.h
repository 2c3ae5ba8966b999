#pragma once

#include <optional>
#include <string>

namespace zerva {

/**
 * @returns all bytes of a regular file; nothing when it is none, cannot be read, or is too long to
 *     be a library. Never waits for anybody.
 */
std::optional<std::string> bytesOf(const std::string& path);

}  // namespace zerva
