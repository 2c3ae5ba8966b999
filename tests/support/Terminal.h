#pragma once

#include <string>

namespace zerva {

/** What a program wrote to a terminal, and how it ended. */
struct Shown {
  std::string text;
  int code = -1;
};

/**
 * Runs a command line of the shell with its standard output on a terminal, which is made for it.
 *
 * @param command one command, whose output leads nowhere else.
 */
Shown runOnATerminal(const std::string& command);

}  // namespace zerva
