#pragma once

#include "host/Verb.h"

namespace CLI {
class App;
}

namespace zerva {

/** The verb `check`. @param verb becomes what is to be done when it is asked for. */
void addCheck(CLI::App& app, Verb& verb);

/** The verb that opens a library in a process of its own; no help names it. */
void addLoadLibrary(CLI::App& app, Verb& verb);

}  // namespace zerva
