#pragma once

#include <map>

#include "host/check/CheckSubject.h"

namespace zerva {

/** Which line of each file brings up the registry. */
class Registries {
 public:
  /** @param subject outlives this. */
  explicit Registries(const CheckSubject& subject);

  /**
   * @returns the registry of a file, when it comes up behind a line of it, and what the line tells
   *     it so is lost; null otherwise.
   */
  const ParsedLine* behind(const CheckedFile& file, const ParsedLine& line) const;

 private:
  std::map<const CheckedFile*, const ParsedLine*> first_;
};

}  // namespace zerva
