#pragma once

#include <string>

class CommsChannelIfc;
class Service;

namespace zerva {

/**
 * Told by an `ObservingRepository` what happens to the services of a process, on the thread on
 * which it happens. It must not throw and must not call the repository.
 */
class RepositoryObserver {
 public:
  /** A service was recorded; its `init` comes next. The channel is null for a legacy service. */
  virtual void serviceAdded(const Service* service, const CommsChannelIfc* channel,
                            const std::string& interfaces) = 0;
  /** All services were told to stop. */
  virtual void stopped() = 0;
  /** All services were deleted. */
  virtual void deleted() = 0;

 protected:
  ~RepositoryObserver() = default;
};

}  // namespace zerva
