#include "host/trace/GraphSource.h"

namespace zerva {

GraphSource graphSourceOf(const RunModel& run) {
  GraphSource source;
  source.name = run.file + ", process " + std::to_string(run.pid);
  source.pid = run.pid;
  source.calls = run.calls;
  source.lost = run.lost;
  for (const ServiceRun& service : run.services) {
    source.services.push_back({service.name, service.interfaces, service.kind != "legacy"});
  }
  return source;
}

}  // namespace zerva
