#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/completion/CommandDescription.h"

namespace zerva {

/** @returns every command with the words that lead to it, separated by blanks; the outermost first.
 */
std::vector<std::pair<std::string, const CommandDescription*>> commandPaths(
    const CommandDescription& command, const std::string& before = {});

/**
 * @returns the branches of a shell's `case` over a command and the word after it, which put the
 * words of the command that this leads to into a variable.
 */
std::string stepsInto(const CommandDescription& command, const std::string& variable);

/** @returns the first sentence of a help text, in single quotes for a shell. */
std::string quotedHelp(const std::string& help);

/** @returns words with blanks between them. */
std::string wordList(const std::vector<std::string>& words);

/** @returns the names of the options that take a value of a kind, separated by `|`; may be empty.
 */
std::string optionsThatTake(const CommandDescription& command, ValueKind kind);

}  // namespace zerva
