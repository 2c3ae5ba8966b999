#pragma once

#include <ctime>
#include <string>

class Service;
class SvcRTEContext;

namespace zerva {

/** How long something took, as it is shown in the log. */
struct InitDuration {
  long seconds;
  /** What is left beyond the seconds. */
  long milliseconds;
};

InitDuration durationBetween(const timespec& start, const timespec& end);

/**
 * Initialises a service and logs how long that took, by the monotonic clock.
 *
 * @param ifc the service's interface list, for the log.
 * @throws what the service's `init` throws; nothing is logged then.
 */
void initialiseTimed(Service& service, SvcRTEContext* context, const std::string& ifc);

}  // namespace zerva
