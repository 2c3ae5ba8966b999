#include "host/Run.h"

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/Complaint.h"
#include "host/Console.h"
#include "host/DefaultLibraryDirectories.h"
#include "host/DirectiveFileCheck.h"
#include "host/EndRequest.h"
#include "host/Host.h"
#include "host/HostBus.h"
#include "host/MemoryReserve.h"
#include "host/SignalName.h"
#include "host/SignalThread.h"
#include "host/live/StatusServing.h"
#include "host/live/StatusWanted.h"
#include "host/notify/ServiceManager.h"
#include "host/tracing/TraceFile.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Futex.h"
#include "runtime/libClientUtils/LibraryDirectories.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libClientUtils/StartedProcesses.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"
#include "runtime/libLoggingHandler/LogSettings.h"

namespace zerva {
namespace {

/** What started processes are given when there is no time left. */
constexpr std::chrono::milliseconds shortestGrace{500};

void writeEverythingOut() {
  TraceFile::writeOut();
  LogSettings::flush();
  Console::flush();
}

[[noreturn]] void leave(ExitCode code, const HostBus& bus) {
  bus.removeOwnDirectory();
  writeEverythingOut();
  // Threads are still at work in what an orderly exit would destroy.
  _exit(static_cast<int>(code));
}

/** @returns whether the log goes where it is wanted. */
bool setUpLog(const RunOptions& options) {
  for (const LogLevel& wanted : options.logLevels) {
    if (wanted.module.empty()) {
      LogSettings::setDefaultLevel(wanted.level);
    } else {
      LogSettings::setLevel(wanted.module, wanted.level);
    }
  }
  std::string error;
  if (options.logFile.empty() || LogSettings::logToFile(options.logFile, error)) return true;
  complain("cannot open the log file " + options.logFile + ": " + error);
  return false;
}

void setUpPlatform(const RunOptions& options) {
  LibraryDirectories::set(options.libraryDirectories.empty() ? defaultLibraryDirectories()
                                                             : options.libraryDirectories);
  if (options.replyTimeout) setReplyTimeout(*options.replyTimeout);
}

/** @returns whether the file can be processed; if not, everything that is wrong was told. */
bool lookOver(const RunOptions& options) {
  if (!options.check) return true;
  const std::vector<Finding> findings = checkDirectiveFile(options.file);
  for (const Finding& finding : findings) {
    printError("", formatFinding(finding));
  }
  return findings.empty();
}

/** @returns null when the bus that was asked for cannot be opened; then it was told why. */
std::unique_ptr<HostBus> openBus(const RunOptions& options) {
  try {
    auto bus = std::make_unique<HostBus>(options.bus);
    if (!bus->whyNone().empty()) complain("other processes cannot be reached: " + bus->whyNone());
    return bus;
  } catch (const std::runtime_error& error) {
    complain(error.what());
    return nullptr;
  }
}

/** A signal that asks to end came: the first ends in order, the second at once. */
void endSignalled(int number, const sigset_t& signals, EndRequest& request, const Host& host,
                  const HostBus& bus, Report& report, MemoryReserve& reserve) {
  reserve.open();
  const std::string name = signalName(number);
  if (!request.made()) {
    // Told first, so that it stands before what it leads to, which comes in any case.
    exceptionOf([&] { report.remark(name + ": ends in order; another signal ends at once"); });
    request.make();
    return;
  }
  complain("ended by a second signal, " + name + ", while it waited for " + host.waitsFor());
  // Nothing that was started stays behind; what hangs here is ended by a third signal.
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  StartedProcesses::terminateAll(shortestGrace);
  leave(ExitCode::Forced, bus);
}

/** @returns what runs, for people. */
std::string describe(const Summary& summary) {
  const std::size_t services = summary.services.up;
  std::string text = std::to_string(services) + (services == 1 ? " service" : " services") + " up";
  if (summary.failures > 0) text += ", " + std::to_string(summary.failures) + " failed";
  return text;
}

/** @returns whether every channel that is waited for is served, or the end was asked for before. */
bool awaitChannels(const RunOptions& options, EndRequest& request, Report& report,
                   ServiceManager& manager, StatusBoard& board) {
  for (const AwaitedChannel& awaited : options.awaited) {
    if (HostBus::await(awaited.name, std::chrono::milliseconds{0}, request)) continue;
    report.remark("waits for channel " + awaited.name);
    manager.awaits("channel " + awaited.name);
    board.awaits("channel " + awaited.name);
    if (!HostBus::await(awaited.name, awaited.longest, request)) {
      if (request.made()) return true;
      complain("channel " + awaited.name + " is not served, so nothing was started");
      return false;
    }
    manager.awaits("");
    board.awaits("");
  }
  return true;
}

/** Lets others see how the process is, from before the start until after the stop. */
class Visible {
 public:
  Visible(bool wanted, const std::string& file, Host& host) {
    if (!wanted) return;
    host.board().expect(file);
    host.sparesExecutorOf(StatusServing::channel());
    serving_.emplace(host.board(), [&host] { return host.awaited(); });
  }

  /** @returns the channel that others still reach when the bus is closed to them; or nothing. */
  std::string channel() const { return serving_ ? StatusServing::channel() : std::string(); }

 private:
  std::optional<StatusServing> serving_;
};

ExitCode startAndStop(const RunOptions& options, const sigset_t& signals, HostBus& bus,
                      const ManagerEnvironment& environment, MemoryReserve& reserve) {
  Console console;
  Report report(console);
  EndRequest request;
  Host host(report);
  const ReserveForTheWayDown wayDown(reserve);
  // As long as this may still be the only thread.
  prepareForManySleepers();
  const SignalThread signalThread(signals, [&](int number) {
    endSignalled(number, signals, request, host, bus, report, reserve);
  });
  ServiceManager manager(environment, [&] { return host.awaited(); });

  const Visible visible(options.status, options.file, host);

  if (!awaitChannels(options, request, report, manager, host.board())) return ExitCode::NotServed;
  StartResult start;
  if (!request.made()) {
    report.remark("starts " + options.file +
                  (options.version.empty() ? "" : ", for a host of version " + options.version));
    start = host.start(options.file);
  }
  if (start.exception) {
    complain("the start was ended by an exception: " + *start.exception);
  } else if (!start.fileNotOpened) {
    // What the manager is not told, for lack of memory, is no reason to end otherwise.
    if (!request.made()) exceptionOf([&] { manager.ready(describe(host.summary())); });
    request.wait(options.duration);
  }
  reserve.open();
  exceptionOf([&] { manager.stopping(); });
  bus.closeToOutside(visible.channel());
  const StopResult stop = host.stop(options.stopTimeout);
  report.summary(host.summary());
  if (!stop.complete) {
    for (const std::string& executor : stop.underWay) {
      complain("still under way, so nothing was deleted: " + executor);
    }
    leave(ExitCode::StillBusy, bus);
  }
  if (start.exception) return ExitCode::StartFailed;
  if (start.fileNotOpened) return ExitCode::FileNotRead;
  return host.incomplete() ? ExitCode::Incomplete : ExitCode::WentDown;
}

}  // namespace

ExitCode run(const RunOptions& options, const sigset_t& signals) {
  RunOptions wanted = options;
  wanted.status = statusWanted(options.status);
  const ManagerEnvironment environment = ManagerEnvironment::take();
  if (!setUpLog(options)) return ExitCode::NoLogFile;
  if (!lookOver(options)) return ExitCode::FileRefused;
  setUpPlatform(options);
  // One buffer a line: what is printed while a service hangs is seen.
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  const TraceFile trace(options.trace, options.file);
  if (!trace.error().empty()) {
    complain(trace.error());
    if (!options.trace.empty()) return ExitCode::NoTraceFile;
  }
  if (wanted.status) SeenCalls::start();
  MemoryReserve reserve;  // the bus needs it to close
  const auto bus = openBus(options);
  if (bus == nullptr) return ExitCode::NoBus;
  const ExitCode code = startAndStop(wanted, signals, *bus, environment, reserve);
  writeEverythingOut();
  return code;
}

}  // namespace zerva
