#pragma once

#include <string>
#include <vector>

namespace zerva::fakes {

/** One call of the platform, or one object's end, as it was seen. */
struct Event {
  /** The call with its arguments and, where there is one, its result. */
  std::string text;
  /** 0 when the code under test made the call, more when a platform call made it. */
  int depth;
  /** The semaphores that were taken, in the order in which they were taken. */
  std::vector<std::string> held;
  /** For a log line its full text, else empty. */
  std::string message;
  /** For a log line the line of the source that it comes from, else 0. */
  int sourceLine = 0;

  /** @returns the text, followed by the semaphores in brackets when there were any. */
  std::string line() const;
};

/**
 * Everything that happens on the recording platform, in the order in which it happens. There is one
 * trace a process; any thread may record.
 */
class Trace {
 public:
  /** Appends an event at the calling thread's depth and runs the hooks that wait for it. */
  static void record(const std::string& text, const std::string& message = {}, int sourceLine = 0);

  /** @returns the events of one depth, as lines. */
  static std::vector<std::string> lines(int depth = 0);

  /** @returns the events of all depths; nested ones are indented by two blanks a level. */
  static std::vector<std::string> everything();

  static std::vector<Event> events();

  /** Forgets all events. */
  static void clear();

  /** @returns the calling thread's depth. */
  static int depth();
};

/** As long as it lives, what the calling thread records is one level deeper. */
class Nested {
 public:
  Nested();
  ~Nested();
  Nested(const Nested&) = delete;
  Nested& operator=(const Nested&) = delete;
};

}  // namespace zerva::fakes
