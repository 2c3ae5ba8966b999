#pragma once

#include <chrono>
#include <string>

#include "framework/Export.h"

/** A request that a service has served, as an interceptor sees it. Valid during the call only. */
struct Invocation {
  /** Interface list of the executor that served it. */
  const std::string& interface;
  /** The method; empty for a message that is no call of an interface method. */
  const std::string& method;
  /** Name of the channel that asked. */
  const std::string& caller;
  /** Name of the channel that was asked. */
  const std::string& channel;
  /** How long the service took. */
  std::chrono::nanoseconds duration;
  /** Why it failed; empty when it succeeded. */
  const std::string& error;
};

/**
 * Sees every invocation that executors make for the dispatcher that it is added to. Called on the
 * thread that served the request, after the service returned, with no lock of the platform held,
 * several at once; it must not throw and should return quickly.
 */
class ZERVA_EXPORT InvokeInterceptor {
 public:
  /** An executor has made an invocation; it is over, however it went. */
  virtual void invoked(const Invocation& invocation) = 0;

 protected:
  ~InvokeInterceptor() = default;
};
