#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "ServiceRepository.h"
#include "framework/CCInterceptorDispatcher.h"
#include "framework/CommsChannel.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "host/BringUp.h"
#include "host/CallCounter.h"
#include "host/Ledger.h"
#include "host/ObservingRepository.h"
#include "host/Report.h"
#include "host/live/StatusBoard.h"
#include "host/tracing/TraceRecorder.h"
#include "host/tracing/TracedChannel.h"
#include "runtime/libClientUtils/ProtocolRepository.h"

class ServiceConfigurator;

namespace zerva {

/** How a start went. */
struct StartResult {
  /** The text of the exception that ended it, if one did. */
  std::optional<std::string> exception;
  bool fileNotOpened = false;
};

/** How a stop went. */
struct StopResult {
  /** Whether everything was deleted; if not, the process must end without destroying the host. */
  bool complete = true;
  /** The executors that still had a request or a creation under way. */
  std::vector<std::string> underWay;
};

/**
 * Brings the services of a process up from a directive file and takes them down again: a
 * configurator with all that it needs. One after the other can live in a process, not two at once.
 *
 * Used by one thread, but for what says otherwise.
 */
class Host {
 public:
  /** @param report where it tells what comes up and goes down; not owned. */
  explicit Host(Report& report);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  /** Does what the file says. Called once. Throws nothing that a service or the file causes. */
  StartResult start(const std::string& file);

  /**
   * Takes everything down in order: services first, then the started processes, last first.
   *
   * @param timeout how long to wait for requests under way, and for the processes to end.
   */
  StopResult stop(std::chrono::milliseconds timeout);

  /** @returns what the summary is made of. */
  Summary summary() const;

  /** Whether some line of the file brought nothing up, or a process that failed. */
  bool incomplete() const { return bringUp_.failures() + processesFailed_ > 0; }

  /** @returns what is known of the services at any moment. */
  StatusBoard& board() { return board_; }

  /**
   * Leaves an executor alone at the end: one of the host's own, that ends on its own and uses
   * nothing of what is deleted. @param channel of that executor. Before the start.
   */
  void sparesExecutorOf(const std::string& channel) { spared_ = channel; }

  /** @returns a sentence about what is being waited for now. Any thread, also when all else hangs.
   */
  std::string waitsFor() const;

  /** @returns as `waitsFor`; empty when it is nothing that is known. */
  std::string awaited() const;

 private:
  /** Where a hanging start or stop hangs. */
  enum class Phase { Idle, Starting, Running, Stopping, Draining, Deleting, EndingProcesses };

  void enter(Phase phase);
  void endProcesses(std::chrono::milliseconds timeout);

  Report& report_;
  std::atomic<Phase> phase_{Phase::Idle};
  Ledger ledger_;
  StatusBoard board_;
  std::string spared_;
  BringUp bringUp_;
  CallCounter counter_;
  ServiceRepository recorded_;
  ObservingRepository repository_;
  CCInterceptorDispatcher channelInterceptors_;
  InvokeInterceptorDispatcher invokeInterceptors_;
  ProtocolRepository protocols_;
  CommsChannel channel_;
  TracedChannel askingChannel_;
  std::unique_ptr<TraceRecorder> recorder_;  // null when no calls are counted
  /** Those that were started before this host was made, by another one in this program. */
  const std::set<int> processesBefore_;
  std::size_t processesDown_ = 0;
  std::size_t processesFailed_ = 0;
  // Deleted by stop(), before anything above.
  std::unique_ptr<ServiceConfigurator> configurator_;
};

}  // namespace zerva
