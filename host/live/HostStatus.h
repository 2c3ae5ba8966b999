#pragma once

#include <functional>
#include <string>
#include <vector>

#include "framework/Service.h"
#include "host/live/HostStatusIfc.h"
#include "host/live/ProcessStatus.h"

namespace zerva {

class StatusBoard;
struct ExecutorProgress;

/**
 * The service that tells how its process is. It looks at what was written down, at the executors'
 * counters and at those of the calls; it asks no service, so none is made by it, and it waits for
 * none.
 */
class HostStatus final : public Service, public HostStatusIfc {
 public:
  /**
   * @param board not owned.
   * @param waitsFor what the process waits for; empty for nothing. Any thread.
   */
  HostStatus(const StatusBoard& board, std::function<std::string()> waitsFor);

  void init(SvcRTEContext* context) override;
  std::string status() override;
  std::string calls() override;

 private:
  const StatusBoard& board_;
  const std::function<std::string()> waitsFor_;
};

/**
 * Gives each service the counters of its executor. Of several services on one channel each gets
 * those of the one with its interfaces.
 */
void addCounters(std::vector<ServiceStatus>& services, std::vector<ExecutorProgress> executors);

}  // namespace zerva
