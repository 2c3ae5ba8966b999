#pragma once

#include <chrono>
#include <string>

namespace zerva {

/** One log line, as a sink gets it. */
struct LogRecord {
  /** Who logged. */
  std::string module;
  /** Name of the source. */
  std::string file;
  /** 1 fatal, 2 error, 3 warning, 4 information, 5 progress, 6 and more detail. */
  int level = 0;
  /** Line in the source. */
  int line = 0;
  /** What was logged; without a line feed at its end, possibly with some inside. */
  std::string text;
  /** When it was logged. */
  std::chrono::system_clock::time_point time;
};

}  // namespace zerva
