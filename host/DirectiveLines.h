#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zerva {

/** A line of a directive file, read and cut as the configurator does. */
struct DirectiveLine {
  /** Counted from 1. */
  std::size_t number;
  /** How many characters it has, without the line feed and with a carriage return. */
  std::size_t length;
  /** The text before the first carriage return or zero, at most 511 characters. */
  std::string text;
  /** Keyword and fields as the configurator cuts them. */
  std::vector<std::string> tokens;
};

/** The longest line that the configurator can read. */
constexpr std::size_t longestDirectiveLine = 511;

/**
 * Reads the lines of a regular file.
 *
 * @returns the lines, or nothing when the file is missing, cannot be read to its end, or is no
 * regular file; a pipe is never opened.
 */
std::optional<std::vector<DirectiveLine>> readDirectiveLines(const std::string& path);

}  // namespace zerva
