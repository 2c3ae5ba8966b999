#include "src/ServiceConfigurator/ProcessMonitoring.h"

#include "framework/OSWrappers.h"
#include "framework/TraceLog.h"

namespace zerva {

// Anywhere in the list, inside a longer name too.
bool isHeartbeat(const std::string& ifc) {
  return ifc.find("HeartbeatServiceIfc") != std::string::npos;
}

void startMonitoring(const std::string& channel) {
  if (!channel.empty()) {
    TraceLog::_instance.logPMon_start(OSWrappers::curID(), channel.c_str(), 0, nullptr, nullptr,
                                      true);
  }
}

}  // namespace zerva
