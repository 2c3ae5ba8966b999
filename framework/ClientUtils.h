#pragma once

#include <string>
#include <vector>

#include "framework/Export.h"

/** Helpers for text that all libraries of the framework share. */
class ZERVA_EXPORT ClientUtils {
 public:
  /**
   * Cuts a text at separator characters.
   *
   * @param text what is cut.
   * @param separators each of its characters separates.
   * @param skipEmpty whether empty pieces are left out, so that runs of separators count as one.
   * @param keepSeparators whether each separator is returned as a piece of its own.
   * @returns the pieces in order. A text without any separator is one piece.
   */
  static std::vector<std::string> tokenizeString(std::string text, std::string separators,
                                                 bool skipEmpty, bool keepSeparators);
};
