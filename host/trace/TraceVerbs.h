#pragma once

#include "host/Verb.h"

namespace CLI {
class App;
}

namespace zerva {

/**
 * The verbs that read nothing but traces: timeline, diff and advise.
 *
 * @param chosen becomes what is to be done when one of them is asked for.
 */
void addTraceVerbs(CLI::App& app, Verb& chosen);

}  // namespace zerva
