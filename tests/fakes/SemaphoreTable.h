#pragma once

#include <string>
#include <vector>

namespace zerva::fakes {

/** Which semaphores of the recording platform are taken now, in the order of taking. */
class SemaphoreTable {
 public:
  static void taken(const std::string& name);
  static void given(const std::string& name);
  static std::vector<std::string> held();
  static void clear();

  /** Names for the next semaphores that are made; those after them are Semaphore#1, #2, ... */
  static void nameNext(const std::vector<std::string>& names);

  /** @returns the next of the names given to `nameNext`, or an empty text. */
  static std::string nextName();
};

}  // namespace zerva::fakes
