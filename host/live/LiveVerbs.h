#pragma once

#include "host/Verb.h"

namespace CLI {
class App;
}

namespace zerva {

/** The verb `status`. @param verb becomes what is to be done when it is asked for; so below. */
void addStatus(CLI::App& app, Verb& verb);

/** The verb `watch`. */
void addWatch(CLI::App& app, Verb& verb);

/** The verb `call`. */
void addCall(CLI::App& app, Verb& verb);

}  // namespace zerva
