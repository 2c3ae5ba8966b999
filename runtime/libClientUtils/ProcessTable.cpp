#include "runtime/libClientUtils/ProcessTable.h"

#include <signal.h>

#include <algorithm>
#include <system_error>

#include "framework/Logging.h"

namespace zerva {
namespace {

constexpr char kModule[] = "Processes";
constexpr char kSource[] = "runtime/libClientUtils";
constexpr int kError = 2;
constexpr int kInformation = 4;
constexpr int kProgress = 5;

void logEnd(const StartedProcess& process) {
  const int level = process.exitStatus == 0 ? kProgress : kInformation;
  if (!loggingOnAppUni(kModule, level)) return;
  if (process.signal != 0) {
    logAppUni(kModule, kSource, level, __LINE__, "Process %d '%s' was ended by signal %d",
              process.id, process.program.c_str(), process.signal);
  } else if (process.exitStatus < 0) {
    logAppUni(kModule, kSource, level, __LINE__,
              "Process %d '%s' ended; somebody else has taken how it ended", process.id,
              process.program.c_str());
  } else {
    logAppUni(kModule, kSource, level, __LINE__, "Process %d '%s' ended with status %d", process.id,
              process.program.c_str(), process.exitStatus);
  }
}

}  // namespace

ProcessTable& ProcessTable::instance() {
  static auto* const table = new ProcessTable;
  return *table;
}

void ProcessTable::addObject(const Process* object) {
  const std::lock_guard lock(mutex_);
  objects_.push_back(object);
}

void ProcessTable::removeObject(const Process* object, const Child& child) {
  const std::lock_guard lock(mutex_);
  objects_.remove(object);
  for (Entry& entry : entries_) {
    if (entry.child == child) entry.owned = false;
  }
  forgetEnded();
}

ProcessTable::Place::Place(const std::string& program)
    : entry_(1, Entry{std::make_shared<StartedChild>(program), true}) {}

ProcessTable::Child ProcessTable::addChild(Place place, int id) {
  Child child = place.entry_.front().child;
  child->begin(id);
  int error = 0;
  {
    const std::lock_guard lock(mutex_);
    entries_.splice(entries_.end(), place.entry_);
    if (reaperRuns_) {
      reaper_.wake();
    } else {
      error = reaper_.start();
      reaperRuns_ = error == 0;
    }
  }
  if (error != 0) {
    logAppUni(kModule, kSource, kError, __LINE__,
              "Processes that end are not reaped for now, no thread can be made: %s",
              std::generic_category().message(error).c_str());
  }
  return child;
}

std::vector<StartedProcess> ProcessTable::list() const {
  const std::lock_guard lock(mutex_);
  std::vector<StartedProcess> all;
  for (const Entry& entry : entries_) all.push_back(entry.child->status());
  return all;
}

std::size_t ProcessTable::objects() const {
  const std::lock_guard lock(mutex_);
  return objects_.size();
}

void ProcessTable::reap(std::vector<int>& watched) {
  std::vector<StartedProcess> ended;
  watched.clear();
  {
    const std::lock_guard lock(mutex_);
    lookAtAll(ended);
    for (const Entry& entry : entries_) {
      if (entry.child->running()) watched.push_back(entry.child->descriptor());
    }
    // Told under the lock, so that a child that comes next finds either this reaper or none.
    reaperRuns_ = !watched.empty();
  }
  for (const StartedProcess& process : ended) logEnd(process);
}

std::vector<StartedProcess> ProcessTable::terminateAll(std::chrono::milliseconds grace) {
  constexpr std::chrono::seconds kForTheSystem{5};
  std::unique_lock lock(mutex_);
  std::vector<Child> children;
  for (const Entry& entry : entries_) {
    if (entry.child->running()) children.push_back(entry.child);
  }
  for (auto child = children.rbegin(); child != children.rend(); ++child) {
    // Until its group was signalled, nobody else is to get its id.
    (*child)->holdBack();
    (*child)->signal(SIGTERM);
  }
  waitForEnd(lock, children, std::chrono::steady_clock::now() + grace);
  for (const Child& child : children) {
    child->signal(SIGKILL);
    child->signalGroup(SIGKILL);
    child->release();
  }
  waitForEnd(lock, children, std::chrono::steady_clock::now() + kForTheSystem);
  forgetEnded();
  std::vector<StartedProcess> ended;
  for (const Child& child : children) ended.push_back(child->status());
  return ended;
}

void ProcessTable::lookAtAll(std::vector<StartedProcess>& ended) {
  for (const Entry& entry : entries_) {
    if (entry.child->look()) ended.push_back(entry.child->status());
  }
  if (ended.empty()) return;
  forgetEnded();
  someEnded_.notify_all();
}

void ProcessTable::forgetEnded() {
  entries_.remove_if([](const Entry& entry) { return !entry.owned && entry.child->reaped(); });
}

void ProcessTable::waitForEnd(std::unique_lock<std::mutex>& lock,
                              const std::vector<Child>& children, Deadline deadline) {
  constexpr std::chrono::milliseconds kOwnLook{50};
  const auto allEnded = [&] {
    return std::none_of(children.begin(), children.end(),
                        [](const Child& child) { return child->running(); });
  };
  while (!allEnded() && std::chrono::steady_clock::now() < deadline) {
    if (reaperRuns_) {
      someEnded_.wait_until(lock, deadline);
    } else {
      // No thread could be made for it.
      std::vector<StartedProcess> ended;
      lookAtAll(ended);
      if (ended.empty()) someEnded_.wait_for(lock, kOwnLook);
    }
  }
}

}  // namespace zerva
