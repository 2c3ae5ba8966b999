#pragma once

#include "host/ConfiguratorEvent.h"

namespace zerva {

/**
 * Notes for which service the calling thread works, as the configurator's progress lines tell; on
 * the thread that a line is about. It goes before what is written of the line.
 */
void workBegins(const ConfiguratorEvent& event);

/** As `workBegins`, for what is over with the line; it goes after that. */
void workEnds(const ConfiguratorEvent& event);

/** The service that the calling thread brought up is up, or has failed. */
void upIsOver();

}  // namespace zerva
