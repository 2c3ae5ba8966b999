#pragma once

#include <string_view>

namespace zerva {

/** How much something matters, as the journal counts it. */
enum class Priority { Error = 3, Notice = 5 };

/**
 * Writes lines to standard error, which is where the host says what is wrong with itself or with
 * what it was given. Where that leads to the journal, each line begins with its priority, like
 * those of the log, so that `journalctl -p err` shows it. Any thread, no memory.
 *
 * @param before what the first line begins with, behind the priority.
 * @param text without the last end of line.
 */
void printError(std::string_view before, std::string_view text,
                Priority priority = Priority::Error);

/** The same, beginning with the program's name. */
void complain(std::string_view text, Priority priority = Priority::Error);

}  // namespace zerva
