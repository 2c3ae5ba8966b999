#pragma once

#include <string>

#include "framework/Context.h"
#include "framework/Export.h"

class Executable;
class Proxy;

/**
 * The run-time context of a service: what it is given in `init`, and how it reaches everything else
 * until it is stopped. All operations may be called from any thread of the service.
 *
 * The order of the operations is part of the binary interface of every service.
 */
class ZERVA_EXPORT SvcRTEContext : public Context {
 public:
  /**
   * Finds the proxy for an interface that is served on a channel known to the caller.
   *
   * @param ifc the interface's name.
   * @param svcChannel the name of the channel; an empty one finds nothing.
   * @returns the proxy, kept by the repository, or null. May block while the registry is asked.
   */
  virtual Proxy* findProxy(std::string& ifc, std::string& svcChannel) = 0;

  /**
   * Finds the service behind an interface: its proxy, made when it is asked for first.
   *
   * @param ifc the interface's name.
   * @returns the proxy as an `Executable*` to be cast to the interface, kept by the repository; or
   *     null when nobody serves the interface now. May block while the registry is asked.
   */
  virtual Executable* findService(const std::string& ifc) = 0;

  /**
   * Makes a timer that stands still.
   *
   * @param owner whose `timerExpired` is called.
   * @param period milliseconds between expiries.
   * @returns the timer's id, greater than 0; or 0 when it could not be made.
   */
  virtual int createTimer(Executable* owner, int period) = 0;

  /** Starts a timer. @returns false when there is none with that id or it runs already. */
  virtual bool startTimer(int id) = 0;

  /** Stops a timer. @returns false when there is none with that id or it does not run. */
  virtual bool stopTimer(int id) = 0;

  /** Runs a timer afresh from now. @returns false when there is none with that id. */
  virtual bool resetTimer(int id) = 0;

  /** Stops and forgets a timer. @returns false when there is none with that id. */
  virtual bool deleteTimer(int id) = 0;

  /** @returns whether a timer runs; false for all once the process shuts down. */
  virtual bool timerRunning(int id) = 0;

  /** Stops the timers and all services of the process without deleting them. For the host. */
  virtual void shutdown() = 0;

  /**
   * Gives a proxy up: deletes it with its request, channel and library. Nobody may use it any more.
   *
   * @param proxy what one of the lookups gave.
   * @param ifc the interface that it was found under.
   */
  virtual void removeAndDeleteProxyFromRepository(Proxy* proxy, std::string& ifc) = 0;

  virtual ~SvcRTEContext() = default;
};
