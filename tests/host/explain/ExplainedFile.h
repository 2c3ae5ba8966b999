#pragma once

#include <string>

#include "host/check/CheckSubject.h"
#include "host/check/LibraryUse.h"
#include "host/explain/Outlook.h"

namespace zerva {

/** A directive file of a test, read but not explained yet. */
class ExplainedFile {
 public:
  explicit ExplainedFile(const std::string& text);

  /** @param number counted from 1. */
  const ParsedLine& line(std::size_t number) const {
    return subject.files.front().lines.at(number - 1);
  }

  /** Makes it known that somebody looked for the library of a line, and what was found. */
  LibraryUse& library(std::size_t number, LibraryFault fault = LibraryFault::None);

  Outlook outlook() const { return Outlook(subject); }

  CheckSubject subject;
};

}  // namespace zerva
