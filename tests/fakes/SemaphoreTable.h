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

  /**
   * From here on a thread that takes a semaphore waits until another one gives it. Otherwise that
   * is an error, since in a test of one thread nobody else can give it. Until `clear`.
   */
  static void letThreadsWait();
  static bool threadsMayWait();

  /** A thread waits for a semaphore from here on, or does so no more. */
  static void waits(const std::string& name);
  static void waitsNoMore(const std::string& name);

  /** @returns the semaphores that threads wait for now, in the order of their waiting. */
  static std::vector<std::string> waitedFor();

  /** Names for the next semaphores that are made; those after them are Semaphore#1, #2, ... */
  static void nameNext(const std::vector<std::string>& names);

  /** @returns the next of the names given to `nameNext`, or an empty text. */
  static std::string nextName();
};

}  // namespace zerva::fakes
