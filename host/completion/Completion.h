#pragma once

#include <string>

#include "host/completion/CommandDescription.h"

namespace zerva {

/** @returns what completes the command in bash, when it is read there. */
std::string bashCompletion(const CommandDescription& command);

/** @returns what completes the command in zsh, as a file `_zerva` in its function path. */
std::string zshCompletion(const CommandDescription& command);

/** @returns what completes the command in fish, as a file `zerva.fish`. */
std::string fishCompletion(const CommandDescription& command);

}  // namespace zerva
