#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"

class CommsChannelIfc;
class Executable;
class FrameworkContext;
class InvokeInterceptorDispatcher;
class ServiceThreadPoolIfc;
class Threader;

/**
 * Runs one service: takes the requests that arrive on the service's channel and hands them to the
 * service, one after the other on a thread of its own, or several at once on the pool.
 *
 * An executor owns its channel and deletes it; the channel was made with `new`. It does not own the
 * service, the context, the pool or the dispatcher, which outlive it.
 *
 * An exception that leaves the service becomes an error reply and a log line; only its text is
 * kept.
 */
class ZERVA_EXPORT ServiceExecutor {
 public:
  /**
   * An executor for a service that exists. The channel is served from here on; requests wait until
   * `startThread`.
   *
   * @param service what gets the requests; null is accepted as long as the executor is never
   *     started.
   * @param channel the service's channel; from here on owned by the executor.
   * @param ifc the service's interface list, names separated by single blanks.
   * @param context the framework side of the run-time context.
   * @param pool where requests run when `multiThreaded`.
   * @param dispatcher is told of every invocation; may be null.
   * @param multiThreaded whether requests may run at the same time, on the pool.
   */
  ServiceExecutor(Executable* service, CommsChannelIfc* channel, std::string ifc,
                  FrameworkContext* context, ServiceThreadPoolIfc* pool,
                  InvokeInterceptorDispatcher* dispatcher, bool multiThreaded);

  /**
   * An executor for a service that is made when it is first needed: by the first message to the
   * channel or by `initService`. The executor's thread then calls `initialiseService` of the
   * context with `lib`, `creator`, the channel and `ifc`. When that gives null, everyone who waits
   * gets an error and the next request tries again; when it throws, that is final and every later
   * request gets the error.
   *
   * @param lib library of the service.
   * @param creator name of the creator function in it.
   *
   * The other parameters are those of the other constructor.
   */
  ServiceExecutor(std::string lib, std::string creator, std::string ifc, CommsChannelIfc* channel,
                  FrameworkContext* context, ServiceThreadPoolIfc* pool,
                  InvokeInterceptorDispatcher* dispatcher, bool multiThreaded);

  /**
   * Shuts down, waits for requests and a creation under way, ends the thread and deletes the
   * channel. Works on an executor that was never started. Not called on a thread of the executor.
   */
  virtual ~ServiceExecutor();
  ServiceExecutor(const ServiceExecutor&) = delete;
  ServiceExecutor& operator=(const ServiceExecutor&) = delete;

  /**
   * Lets the requests in. A service with one thread, and one that is still to be made, gets its
   * thread here.
   *
   * @param threader starts the thread; used during the call only.
   * @param threadId gets the id of that thread, or 0 when the executor needs none of its own.
   *
   * When the thread cannot be made this is logged, the channel is closed and `threadId` is 0.
   */
  void startThread(Threader& threader, unsigned long& threadId);

  /**
   * Makes sure that the service exists and that its initialisation is complete; a lazy service is
   * made on the executor's thread and this waits for it, for the reply time-out at the longest:
   * after that it logs an error and returns, since what makes the service may be waiting for this
   * very caller. Returns at once when it exists already, on the thread that is creating it or in a
   * call chain that the creation waits for, and when the executor is shut down or was never
   * started. Harmless when repeated.
   */
  void initService();

  /**
   * Ends the service's work: closes the channel, gives queued and later requests an error, and
   * wakes with an error every thread of the executor that waits for a reply. Only signals, never
   * waits. May be repeated, from any thread.
   */
  void shutdown();

 private:
  struct State;
  void serve();
  std::unique_ptr<State> state_;
};
