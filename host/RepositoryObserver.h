#pragma once

#include <string>

class CommsChannelIfc;
class ProxyRequest;
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
  /** A proxy was recorded. @param request what it makes its calls through. */
  virtual void proxyAdded(const std::string& /*interface*/, const ProxyRequest* /*request*/,
                          const CommsChannelIfc* /*channel*/) {}
  /** An invoker was recorded. */
  virtual void invokerAdded(const std::string& /*interface*/, const std::string& /*protocol*/) {}
  /** All services were told to stop. */
  virtual void stopped() = 0;
  /** All services were deleted. */
  virtual void deleted() = 0;
  /** All proxies, all invokers were deleted. */
  virtual void proxiesDeleted() {}
  virtual void invokersDeleted() {}

 protected:
  ~RepositoryObserver() = default;
};

}  // namespace zerva
