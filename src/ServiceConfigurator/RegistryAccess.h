#pragma once

#include <string>

#include "framework/Context.h"
#include "framework/Executable.h"
#include "framework/ServiceRegistryIfc.h"

namespace zerva {

/**
 * Finds the service registry through a run-time context. May block while the registry is asked.
 *
 * @param name the interface that the registry is found under.
 * @returns the registry or its proxy; null when nothing is found or what is found is no registry.
 */
inline ServiceRegistryIfc* findRegistry(Context& context, std::string name) {
  return dynamic_cast<ServiceRegistryIfc*>(context.findExecutable(name));
}

}  // namespace zerva
