#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/CallChain.h"
#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {

/** An executor, as a thread that serves one of its requests sees it while it waits for a reply. */
class ZERVA_EXPORT Serving {
 public:
  /** The thread is about to wait; it wants to be unparked when one of the answers below changes. */
  virtual void waitBegins(const std::shared_ptr<Parker>& parker) = 0;

  /** The thread's wait is over. */
  virtual void waitEnds(const std::shared_ptr<Parker>& parker) = 0;

  /** @returns whether the executor was shut down, which ends every wait of its threads. */
  virtual bool isShutDown() = 0;

  /**
   * Serves, on the calling thread, the next message of a chain, if one has arrived.
   *
   * @param chain what the thread serves.
   * @returns whether there was one.
   */
  virtual bool serveNext(const CallChain& chain) = 0;

  /** @returns the name of the channel that it serves; valid as long as it serves. */
  virtual std::string_view channelName() const = 0;

 protected:
  ~Serving() = default;
};

/** A place among the limited number of running tasks, that a waiting thread makes free. */
class ZERVA_EXPORT RunningPlace {
 public:
  virtual void leave() = 0;
  virtual void comeBack() = 0;

 protected:
  ~RunningPlace() = default;
};

/**
 * What the platform knows of the calling thread. It needs no destructor, which a thread could not
 * have noted without memory.
 */
struct ZERVA_EXPORT ServingThread {
  /** The executor whose request the thread serves; null for a thread that serves none. */
  Serving* serving = nullptr;
  /** The chain of the request that it serves; null when it serves none. */
  const CallChain* served = nullptr;
  /** How many requests it serves inside each other. */
  unsigned nesting = 0;
  /** Its place in a pool; null for a thread of another kind. */
  RunningPlace* place = nullptr;

  /** @returns the chain of the request that it serves. */
  const CallChain& chain() const;
};

/** @returns the calling thread's own. */
ZERVA_EXPORT ServingThread& servingThread();

/** While it lives, the calling thread serves a request. */
class ZERVA_EXPORT ServingScope {
 public:
  /** @param chain not copied. */
  ServingScope(Serving* serving, const CallChain& chain);
  ~ServingScope();
  ServingScope(const ServingScope&) = delete;
  ServingScope& operator=(const ServingScope&) = delete;

 private:
  ServingThread& thread_;
  const ServingThread before_;
};

/**
 * While it lives, the calling thread waits: its place in the pool is free and its executor knows
 * what to unpark. The executor is not told of a shutdown or of requests otherwise.
 */
class ZERVA_EXPORT WaitingScope {
 public:
  WaitingScope() : WaitingScope(servingThread()) {}
  ~WaitingScope();
  WaitingScope(const WaitingScope&) = delete;
  WaitingScope& operator=(const WaitingScope&) = delete;

 private:
  explicit WaitingScope(const ServingThread& thread);

  Serving* const serving_;
  RunningPlace* const place_;
};

/**
 * While it lives, the calling thread, whatever it serves or waits for otherwise, does something for
 * others.
 */
class ZERVA_EXPORT ForOthersScope {
 public:
  ForOthersScope();
  ~ForOthersScope();
  ForOthersScope(const ForOthersScope&) = delete;
  ForOthersScope& operator=(const ForOthersScope&) = delete;

  /** @returns whether the calling thread does so now. */
  static bool on();

 private:
  const ServingThread before_;
  const bool outer_;
  const TraceWorkScope forNobody_{{}};
};

}  // namespace zerva
