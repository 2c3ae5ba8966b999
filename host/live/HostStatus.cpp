#include "host/live/HostStatus.h"

#include <algorithm>
#include <utility>

#include "host/live/CallsSoFar.h"
#include "host/live/StatusBoard.h"
#include "runtime/libServiceExecutor/Progress.h"

namespace zerva {
namespace {

using Executors = std::vector<ExecutorProgress>;

/** @returns the executor of a service; the end when it has none. */
Executors::iterator executorOf(const ServiceStatus& service, Executors& executors) {
  const auto begins = [](const std::string& text, const std::string& with) {
    // Some lists of interfaces end with the fill of a line that was too short.
    return text.starts_with(with) && text.find_first_not_of(' ', with.size()) == std::string::npos;
  };
  return std::find_if(executors.begin(), executors.end(), [&](const ExecutorProgress& executor) {
    return executor.channel == service.channel && begins(executor.interfaces, service.interfaces);
  });
}

}  // namespace

std::string HostStatusIfc::channelOf(int process) {
  return "/zerva/host/" + std::to_string(process) + "/status";
}

HostStatus::HostStatus(const StatusBoard& board, std::function<std::string()> waitsFor)
    : board_(board), waitsFor_(std::move(waitsFor)) {}

void HostStatus::init(SvcRTEContext* /*context*/) {}

std::string HostStatus::status() {
  ProcessStatus status = board_.read();
  if (status.waitsFor.empty()) status.waitsFor = waitsFor_();
  addCounters(status.services, executorProgress());
  return writeProcessStatus(status);
}

std::string HostStatus::calls() { return writeCallsSoFar(callsOfThisProcess()); }

void addCounters(std::vector<ServiceStatus>& services, std::vector<ExecutorProgress> executors) {
  for (ServiceStatus& service : services) {
    if (service.channel.empty()) continue;
    const auto found = executorOf(service, executors);
    if (found == executors.end()) continue;
    service.executor =
        ExecutorStatus{found->id, found->begun, found->queued, found->serving, found->failed};
    if (found->making && service.state == ServiceState::Lazy) {
      service.state = ServiceState::Initialising;
      // The board is told in a moment, so it has only just begun.
      service.stateSeconds = 0;
    }
    // Of two that are alike the second has the second's.
    executors.erase(found);
  }
}

}  // namespace zerva
