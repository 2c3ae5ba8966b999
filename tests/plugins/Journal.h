#pragma once

#include <unistd.h>

#include <cstdio>

// What a service of a test says of itself: that it was made, initialised, stopped, deleted. Without
// any memory, since there may be none, and past the buffers, which may be lost.

namespace zerva {

/** Writes a line of the journal, when there is a name; the other services say nothing. */
inline void journal(const char* name, const char* what) {
  if (name == nullptr) return;
  char line[80];
  const int size = std::snprintf(line, sizeof line, "journal: %s %s\n", name, what);
  static_cast<void>(!write(STDOUT_FILENO, line, static_cast<std::size_t>(size)));
}

}  // namespace zerva
