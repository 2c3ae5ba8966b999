#include "host/trace/GraphSource.h"

namespace zerva {

GraphSource graphSourceOf(const RunModel& run) {
  GraphSource source;
  source.name = run.file + ", process " + std::to_string(run.pid);
  source.pid = run.pid;
  source.calls = run.calls;
  source.lost = run.lost;
  for (const ServiceRun& service : run.services) {
    const bool hasChannel = service.kind != "legacy";
    source.services.push_back({service.name, service.interfaces, hasChannel});
    if (hasChannel && service.error.empty()) source.channels.push_back(service.name);
  }
  return source;
}

}  // namespace zerva
