#include "host/notify/ServiceManager.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <utility>

#include "host/Complaint.h"
#include "host/notify/StuckExecutors.h"
#include "runtime/libClientUtils/ExceptionText.h"

namespace zerva {
namespace {

/** How often a start or a stop is looked at. */
constexpr std::chrono::milliseconds statusPause{200};

/** @returns that of the environment, or none when that cannot be used; why is told. */
std::string usable(const std::string& address) {
  try {
    const NotifySocket tried(address);
    return address;
  } catch (const std::runtime_error& error) {
    complain("the service manager is not told anything, NOTIFY_SOCKET is '" + address +
             "': " + error.what());
    return "";
  }
}

/** The protocol has a line for each thing that is told. */
std::string oneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

std::string joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : "; ") + part;
  return text;
}

}  // namespace

ServiceManager::ServiceManager(const ManagerEnvironment& environment,
                               std::function<std::string()> waitsFor)
    : socket_(usable(environment.socket)),
      watchdog_(environment.watchdog),
      waitsFor_(std::move(waitsFor)) {
  if (socket_.isThere()) thread_ = std::thread([this] { watch(); });
}

ServiceManager::~ServiceManager() {
  {
    const std::lock_guard lock(mutex_);
    over_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void ServiceManager::awaits(const std::string& what) {
  {
    const std::lock_guard lock(mutex_);
    awaited_ = oneLine(what);
  }
  changed_.notify_all();
}

void ServiceManager::ready(const std::string& status) {
  if (!socket_.isThere()) return;
  {
    const std::lock_guard lock(mutex_);
    phase_ = Phase::Running;
    running_ = oneLine(status);
    // Under the lock, so that no status of the start comes after it.
    if (!socket_.send("READY=1\nSTATUS=" + running_)) {
      complain("the service manager could not be told that all is up");
    }
  }
  changed_.notify_all();
}

void ServiceManager::stopping() {
  if (!socket_.isThere()) return;
  {
    const std::lock_guard lock(mutex_);
    phase_ = Phase::Stopping;
    awaited_.clear();
    socket_.send("STOPPING=1\nSTATUS=stopping");
  }
  changed_.notify_all();
}

ServiceManager::Clock::duration ServiceManager::pause(Phase phase) const {
  // Twice in the time after which an executor counts as stuck, which is half of the manager's: so
  // signs of life come four times as often as they must, and no single late one ends the process.
  const Clock::duration sign = watchdog_ ? *watchdog_ / 4 : Clock::duration::max();
  return phase == Phase::Running ? sign : std::min<Clock::duration>(sign, statusPause);
}

void ServiceManager::watch() {
  StuckExecutors executors(watchdog_ ? *watchdog_ / 2 : Clock::duration::max());
  std::unique_lock lock(mutex_);
  while (!over_) {
    const Phase phase = phase_;
    lock.unlock();
    const auto failed = exceptionOf([&] {
      // What starts or stops may wait for long, and what it waits for is the status then. Signs of
      // life are sent meanwhile, whatever the executors do: how long it may take is for the
      // manager's time-outs of start and stop to say.
      const bool judged = watchdog_ && phase == Phase::Running;
      const auto stuck =
          judged ? executors.look(executorProgress(), Clock::now()) : std::vector<std::string>();
      if (watchdog_ && stuck.empty()) socket_.trySend("WATCHDOG=1");
      if (judged) tellStuck(joined(stuck));
      if (stuck.empty()) tellStatus(phase);
    });
    // No sign of life was sent, which says more than words.
    if (failed) printError("zerva: the service manager was not told: ", *failed);
    lock.lock();
    const auto wait = pause(phase_);
    const auto changed = [&] { return over_ || phase_ != phase; };
    if (wait == Clock::duration::max()) {
      changed_.wait(lock, changed);
    } else {
      changed_.wait_for(lock, wait, changed);
    }
  }
}

std::string ServiceManager::awaited() {
  const std::lock_guard lock(mutex_);
  return awaited_;
}

/** Tells what is waited for while it starts and stops, and what runs, when that has changed. */
void ServiceManager::tellStatus(Phase phase) {
  std::string status;
  if (phase != Phase::Running) {
    std::string what = awaited();
    if (what.empty()) what = oneLine(waitsFor_());
    status = phase == Phase::Starting ? "starting" : "stopping";
    if (!what.empty()) status += ", waits for " + what;
  }
  const std::lock_guard lock(mutex_);
  if (phase_ != phase) return;
  if (phase == Phase::Running) status = running_;
  if (status != told_ && socket_.trySend("STATUS=" + status)) told_ = status;
}

/** Tells which executors are stuck, when that has changed; the manager and the log. */
void ServiceManager::tellStuck(const std::string& stuck) {
  if (stuck == toldStuck_) return;
  toldStuck_ = stuck;
  told_.clear();
  if (stuck.empty()) {
    complain("all executors answer again", Priority::Notice);
    return;
  }
  complain("no sign of life is sent, something is queued and nothing moves: " + stuck);
  socket_.trySend("STATUS=stuck: " + oneLine(stuck));
}

}  // namespace zerva
