#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zerva {

/** Something in a directive file with which a start would hang or break off. */
struct Finding {
  std::string file;
  /** Counted from 1. */
  std::size_t line;
  /** Counted from 1, in bytes. */
  std::size_t column;
  /** One sentence. */
  std::string text;
};

/**
 * Looks a directive file over. Starts nothing and changes nothing.
 *
 * @returns everything that it finds, from the first line to the last. A file that is missing or
 *     cannot be read gives nothing: the configurator tells that itself.
 */
std::vector<Finding> checkDirectiveFile(const std::string& path);

/** @returns the finding as compilers write theirs. */
std::string formatFinding(const Finding& finding);

}  // namespace zerva
