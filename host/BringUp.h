#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/ConfiguratorEvent.h"
#include "host/Ledger.h"
#include "host/RepositoryObserver.h"
#include "host/ServiceModes.h"
#include "runtime/libLoggingHandler/LogSink.h"

namespace zerva {

class Report;
class StatusBoard;
struct ServiceStatus;

/**
 * Follows a configurator at its work, by the lines that it logs and by what its repository is told,
 * and enters and reports what comes up, what does not, and what goes down. The configurator itself
 * gives its host no results.
 *
 * What happens on one thread belongs together: the lines of a directive come on the host's thread,
 * those of a lazy service on the thread of its executor.
 */
class BringUp final : public LogSink, public RepositoryObserver {
 public:
  /** @param ledger, @param report and @param board not owned. */
  BringUp(Ledger& ledger, Report& report, StatusBoard& board);
  ~BringUp();
  BringUp(const BringUp&) = delete;
  BringUp& operator=(const BringUp&) = delete;

  /** The file is about to be processed. */
  void startBegins(const std::string& file);

  /** The file was processed on this thread. @param exception text of what ended it, if anything. */
  void startEnds(const std::optional<std::string>& exception);

  /** No creation runs any more: what has not come up by now did not. */
  void settle();

  /** @returns how many services, processes and lines of the file did not come to anything. */
  unsigned long failures() const { return failures_; }

  /** @returns how many processes were started. */
  std::size_t processes() const { return processes_; }

  /** @returns how many errors were logged from the beginning to the end of the start. */
  unsigned long errorsWhileStarting() const { return errorsWhileStarting_; }

  bool fileNotOpened() const { return fileNotOpened_; }

  /** @returns what is being done now to bring services up; each completes "waits for". */
  std::vector<std::string> underWay() const;

  void write(const LogRecord& record) override;
  void serviceAdded(const Service* service, const CommsChannelIfc* channel,
                    const std::string& interfaces) override;
  void stopped() override;
  void deleted() override;

 private:
  /** The creation of a service. */
  struct Step {
    bool lazy = false;
    ServiceEntry service;
    std::string creator;
    /** What is being done; completes "waits for". */
    std::string phase;
    /** Its place in the ledger, once it is recorded. */
    std::optional<std::size_t> place;
    /** Its row on the board, once it is known which one that is. */
    std::optional<std::size_t> row;
  };

  void take(const ConfiguratorEvent& event);
  void lineBegins(const ConfiguratorEvent& event, const std::string& mode);
  void lazyLine(const ConfiguratorEvent& event);
  void lazyCreationBegins();
  void advance(const ConfiguratorEvent& event);
  void initTook(const ConfiguratorEvent& event);
  void processStarted(const ConfiguratorEvent& event);
  void fail(const std::string& what, const std::string& why);
  void fail(const Step& step, const std::string& why);
  void failStep(const std::string& why);
  std::optional<Step> takeStep();
  std::string nameOf(const Step& step) const;
  std::string modeOf(const Step& step) const;
  void advanceTo(Step& step, const std::string& phase);
  static ServiceStatus statusOf(const Step& step);

  Ledger& ledger_;
  Report& report_;
  StatusBoard& board_;

  std::atomic<bool> starting_{false};
  std::atomic<bool> fileNotOpened_{false};
  std::atomic<unsigned long> errorsWhileStarting_{0};
  std::atomic<unsigned long> failures_{0};
  std::atomic<std::size_t> processes_{0};

  mutable std::mutex mutex_;
  // Guarded by mutex_.
  ServiceModes modes_;
  std::map<std::thread::id, Step> steps_;
  std::vector<Step> lazyLines_;
  /** What lazy services failed of; each is tried again with every request. */
  std::set<std::string> failedLazily_;
};

}  // namespace zerva
