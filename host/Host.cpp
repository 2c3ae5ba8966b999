#include "host/Host.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "ServiceConfigurator.h"
#include "host/SignalName.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/StartedProcesses.h"
#include "runtime/libClientUtils/Waiting.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "runtime/libServiceExecutor/Drain.h"

namespace zerva {
namespace {

std::string join(const std::vector<std::string>& parts) {
  std::string joined;
  for (const std::string& part : parts) joined += (joined.empty() ? "" : "; ") + part;
  return joined;
}

void append(std::vector<std::string>& parts, const std::vector<std::string>& more) {
  parts.insert(parts.end(), more.begin(), more.end());
}

std::set<int> idsOf(const std::vector<StartedProcess>& processes) {
  std::set<int> ids;
  for (const StartedProcess& process : processes) ids.insert(process.id);
  return ids;
}

std::string endOf(const StartedProcess& process) {
  if (process.running) return "still runs, it could not be killed";
  if (process.signal == SIGKILL) return "killed";
  if (process.signal != 0) return "ended by " + signalName(process.signal);
  return "with status " + std::to_string(process.exitStatus);
}

}  // namespace

Host::Host(Report& report)
    : report_(report),
      bringUp_(ledger_, report_, board_),
      repository_(recorded_, bringUp_),
      channel_("/zerva/host/" + std::to_string(getpid()), nullptr),
      askingChannel_(channel_),
      processesBefore_(idsOf(StartedProcesses::list())) {
  invokeInterceptors_.addInterceptor(&counter_);
  if (Trace::countsCalls()) {
    recorder_ = std::make_unique<TraceRecorder>();
    repository_.addObserver(*recorder_);
  }
}

Host::~Host() = default;

StartResult Host::start(const std::string& file) {
  StartResult result;
  enter(Phase::Starting);
  bringUp_.startBegins(file);
  CommsChannelIfc* const asking = recorder_ == nullptr
                                      ? static_cast<CommsChannelIfc*>(&channel_)
                                      : static_cast<CommsChannelIfc*>(&askingChannel_);
  try {
    configurator_ = std::make_unique<ServiceConfigurator>(
        asking, &repository_, &protocols_, &channelInterceptors_, &invokeInterceptors_);
    configurator_->processDirectives(file);
  } catch (...) {
    // Only the text leaves the handler: the exception ends here, while the library that its type
    // may live in is still there.
    result.exception = currentExceptionText();
  }
  bringUp_.startEnds(result.exception);
  if (recorder_ != nullptr) recorder_->startEnds();
  result.fileNotOpened = bringUp_.fileNotOpened();
  if (const unsigned long errors = bringUp_.errorsWhileStarting(); errors > 0) {
    report_.remark(std::to_string(errors) + (errors == 1 ? " error" : " errors") +
                   " while starting, see the log");
  }
  enter(Phase::Running);
  return result;
}

StopResult Host::stop(std::chrono::milliseconds timeout) {
  StopResult result;
  enter(Phase::Stopping);
  if (configurator_ != nullptr) configurator_->shutdown();
  enter(Phase::Draining);
  const DrainResult drain = drainExecutors(timeout, spared_);
  result.complete = drain.complete;
  result.underWay = drain.underWay;
  if (drain.complete) {
    bringUp_.settle();
    enter(Phase::Deleting);
    configurator_.reset();
  }
  enter(Phase::EndingProcesses);
  endProcesses(timeout);
  enter(Phase::Idle);
  return result;
}

void Host::enter(Phase phase) {
  constexpr std::array names = {"ended",    "starting", "running",         "stopping",
                                "draining", "deleting", "ending_processes"};
  phase_.store(phase, std::memory_order_relaxed);
  board_.enter(names[static_cast<std::size_t>(phase)]);
  if (recorder_ != nullptr) recorder_->phaseBegins(names[static_cast<std::size_t>(phase)]);
}

/** Tells what ended by itself, and ends the rest. */
void Host::endProcesses(std::chrono::milliseconds timeout) {
  std::vector<StartedProcess> mine = StartedProcesses::list();
  mine.erase(std::remove_if(mine.begin(), mine.end(),
                            [this](const StartedProcess& process) {
                              return processesBefore_.contains(process.id);
                            }),
             mine.end());
  for (const StartedProcess& process : mine) {
    if (process.running) continue;
    ++processesDown_;
    if (process.exitStatus != 0) ++processesFailed_;
    report_.processEnded(process.program, process.id, "by itself, " + endOf(process));
  }
  const std::vector<StartedProcess> ended = StartedProcesses::terminateAll(timeout);
  for (auto process = ended.rbegin(); process != ended.rend(); ++process) {
    if (!process->running) ++processesDown_;
    report_.processEnded(process->program, process->id, endOf(*process));
  }
}

Summary Host::summary() const {
  Summary summary;
  summary.services = ledger_.count();
  summary.processesUp = bringUp_.processes();
  summary.processesDown = processesDown_;
  summary.calls = counter_.calls();
  summary.failures = counter_.failures() + bringUp_.failures() + processesFailed_;
  return summary;
}

std::string Host::waitsFor() const {
  const std::string what = awaited();
  return what.empty() ? "nothing that is known" : what;
}

std::string Host::awaited() const {
  std::vector<std::string> what;
  switch (phase_.load(std::memory_order_relaxed)) {
    case Phase::Starting:
      what = bringUp_.underWay();
      if (what.empty()) what = {"the directive file"};
      break;
    case Phase::Stopping:
      // The timers end first.
      if (const std::string last = Waiting::lastShutdown(); !last.empty()) {
        what = {"the stop of " + last};
      }
      break;
    case Phase::Draining:
      append(what, executorsUnderWay(spared_));
      break;
    case Phase::Deleting:
      what = {"the deletion of the services"};
      break;
    case Phase::EndingProcesses:
      what = {"the end of the started processes"};
      break;
    case Phase::Idle:
    case Phase::Running:
      break;
  }
  append(what, Waiting::all());
  return join(what);
}

}  // namespace zerva
