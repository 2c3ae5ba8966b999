#pragma once

#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/fakes/Text.h"

namespace zerva::conformance {

/** Expected lines of the trace; one text may hold several lines. */
using Lines = std::vector<std::string>;

/** An object in a log line's arguments, by its name in the trace. */
struct Object {
  std::string name;
};

inline std::string argumentText(const std::string& text) { return fakes::inQuotes(text); }
inline std::string argumentText(const char* text) { return fakes::inQuotes(text); }
inline std::string argumentText(long number) { return std::to_string(number); }
inline std::string argumentText(const Object& object) { return object.name; }

/** @returns the line of one call of the logger. */
template <class... Arguments>
std::string logLine(const std::string& source, int level, const std::string& format,
                    const Arguments&... arguments) {
  std::string line = "log(\"Service Config\", " + fakes::inQuotes(source) + ", " +
                     std::to_string(level) + ", " + fakes::inQuotes(format);
  ((line += ", " + argumentText(arguments)), ...);
  return line + ")";
}

/** @returns the lines of a message that is written only if its level is on: question and answer. */
std::string guarded(int level, const std::string& line);

/** @returns a line of standard output; `text` without the line feed that ends it. */
std::string printed(const std::string& text);

/** @returns the lines, each seen while the semaphores are taken. */
std::string whileHolding(const std::string& semaphores, const Lines& lines);

/** @returns the lines between the taking and the giving back of a semaphore. */
std::string locked(const std::string& semaphore, const Lines& lines);

/** @returns all as one text, a line each. */
std::string asText(const Lines& lines);

}  // namespace zerva::conformance
