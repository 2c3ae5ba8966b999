#pragma once

#include "host/completion/CommandDescription.h"

namespace CLI {
class App;
}

namespace zerva {

/** @returns what a parser of the command line knows about itself. */
CommandDescription describeCommand(const CLI::App& app);

}  // namespace zerva
