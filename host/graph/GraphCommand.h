#pragma once

#include "host/Verb.h"

namespace CLI {
class App;
}

namespace zerva {

/** The verb `graph`. @param verb becomes what is to be done when it is asked for. */
void addGraph(CLI::App& app, Verb& verb);

}  // namespace zerva
