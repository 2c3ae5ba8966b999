#pragma once

#include <string>

namespace zerva {

/** @returns whether an interface list tells that the process is to be monitored. */
bool isHeartbeat(const std::string& ifc);

/**
 * Starts the monitoring of the calling thread.
 *
 * @param channel the name to monitor; nothing is done when it is empty.
 */
void startMonitoring(const std::string& channel);

}  // namespace zerva
