#pragma once

#include <string>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/**
 * Where libraries are searched that are named without a slash, before the system's own places. One
 * setting for the process. Any thread may call any operation.
 */
class ZERVA_EXPORT LibraryDirectories {
 public:
  /** Sets the directories, the one that is searched first first. */
  static void set(const std::vector<std::string>& directories);

  /** @returns the directories that were set. */
  static std::vector<std::string> get();

  /**
   * @param name a library's file name.
   * @returns its path in the first of the directories that has it; the name as it is when it holds
   *     a slash or none of them has it.
   */
  static std::string resolve(const std::string& name);
};

}  // namespace zerva
