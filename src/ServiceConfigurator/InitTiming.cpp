#include "src/ServiceConfigurator/InitTiming.h"

#include "framework/Service.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"

namespace zerva {

InitDuration durationBetween(const timespec& start, const timespec& end) {
  auto nanoseconds = end.tv_nsec - start.tv_nsec;
  auto seconds = end.tv_sec - start.tv_sec;
  if (nanoseconds < 0) {
    nanoseconds += 1000000000;
    seconds -= 1;
  }
  // Seconds have eight bytes on every word size, more than the log's format takes.
  return {static_cast<long>(seconds), static_cast<long>(nanoseconds / 1000000)};
}

void initialiseTimed(Service& service, SvcRTEContext* context, const std::string& ifc) {
  timespec start{};
  timespec end{};
  clock_gettime(CLOCK_MONOTONIC, &start);
  service.init(context);
  clock_gettime(CLOCK_MONOTONIC, &end);

  const InitDuration took = durationBetween(start, end);
  // Seconds and milliseconds are two numbers with a dot between them, so 1 s and 5 ms are 1.5s.
  CONFIGURATOR_LOG_PROGRESS(
      "Service Configurator: For ifc = '%s' init() took %ld.%lds using CLOCK_MONOTONIC",
      ifc.c_str(), took.seconds, took.milliseconds);
}

}  // namespace zerva
