#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace zerva {

/**
 * Writes a file, replacing one that is there.
 *
 * @param file Where to; its directory is there.
 * @param text Every byte of it, line ends and zero bytes as they are.
 * @returns The file, so that it can be written where its name is needed.
 * @throws std::runtime_error naming the file when it cannot be written.
 */
std::filesystem::path writeFile(const std::filesystem::path& file, std::string_view text);

/**
 * Reads a whole file.
 *
 * @returns Every byte of it.
 * @throws std::runtime_error naming the file when it cannot be read.
 */
std::string readFile(const std::filesystem::path& file);

}  // namespace zerva
