#pragma once

#include <string>

namespace zerva {

/**
 * What a person is told on standard output, a line at a time. It shares the stream with what the
 * configurator prints, so both stand in the order in which they happened.
 *
 * Any thread may call any operation.
 */
class Console {
 public:
  /** Colours are used on a terminal only, and not when NO_COLOR is set. */
  Console();

  /** Writes a line. A reader that has gone is ignored. */
  void line(const std::string& text);

  /** @returns the word as something good looks. */
  std::string good(const std::string& word) const;

  /** @returns the word as something bad looks. */
  std::string bad(const std::string& word) const;

  /** Writes out what is kept back. */
  static void flush();

 private:
  bool colours_;
};

}  // namespace zerva
