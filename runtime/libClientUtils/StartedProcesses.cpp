#include "runtime/libClientUtils/StartedProcesses.h"

#include "runtime/libClientUtils/ProcessTable.h"

namespace zerva {

std::vector<StartedProcess> StartedProcesses::list() { return ProcessTable::instance().list(); }

std::vector<StartedProcess> StartedProcesses::terminateAll(std::chrono::milliseconds grace) {
  return ProcessTable::instance().terminateAll(grace);
}

std::size_t StartedProcesses::objects() { return ProcessTable::instance().objects(); }

}  // namespace zerva
