#pragma once

#include "host/check/CheckOptions.h"

namespace CLI {
class App;
}

namespace zerva {

/** The verb `check`: its words, and where they go. @returns the verb, which the app owns. */
CLI::App* addCheck(CLI::App& app, CheckOptions& options);

/** The verb that opens a library in a process of its own; no help names it. */
CLI::App* addLoadLibrary(CLI::App& app, LoadOptions& options);

}  // namespace zerva
