#include "host/BringUp.h"

#include <string_view>
#include <utility>

#include "framework/CommsChannelIfc.h"
#include "framework/Service.h"
#include "host/Report.h"
#include "host/live/StatusBoard.h"
#include "runtime/libClientUtils/StartedProcesses.h"
#include "runtime/libClientUtils/Waiting.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "runtime/libLoggingHandler/LogSettings.h"

namespace zerva {
namespace {

using Kind = ConfiguratorEvent::Kind;

constexpr const char* configuratorModule = "Service Config";
constexpr const char* executorModule = "Service Executor";
constexpr std::string_view thrownByLazy = ": the service could not be made: ";
constexpr const char* notFinished = "its creation was not finished";

}  // namespace

BringUp::BringUp(Ledger& ledger, Report& report, StatusBoard& board)
    : ledger_(ledger), report_(report), board_(board) {
  LogSettings::addSink(*this, configuratorModule, 5);
  LogSettings::addSink(*this, executorModule, 2);
}

BringUp::~BringUp() { LogSettings::removeSink(*this); }

void BringUp::startBegins(const std::string& file) {
  {
    const std::lock_guard lock(mutex_);
    modes_ = ServiceModes(file);
  }
  starting_ = true;
}

void BringUp::startEnds(const std::optional<std::string>& exception) {
  starting_ = false;
  const std::optional<Step> step = takeStep();
  if (step) {
    fail(*step, exception.value_or(notFinished));
  } else if (exception) {
    fail("the start", *exception);
  }
  board_.startEnds();
}

void BringUp::settle() {
  std::map<std::thread::id, Step> steps;
  {
    const std::lock_guard lock(mutex_);
    steps.swap(steps_);
  }
  for (const auto& [thread, step] : steps) fail(step, notFinished);
}

std::vector<std::string> BringUp::underWay() const {
  const std::lock_guard lock(mutex_);
  std::vector<std::string> phases;
  for (const auto& [thread, step] : steps_) {
    if (!step.phase.empty()) phases.push_back(step.phase);
  }
  return phases;
}

void BringUp::write(const LogRecord& record) {
  if (record.level <= 2 && starting_) ++errorsWhileStarting_;
  if (record.module == configuratorModule) {
    take(readConfiguratorLine(record.level, record.text));
    return;
  }
  // What a creator or an `init` on the thread of an executor threw.
  const std::size_t at = record.text.find(thrownByLazy);
  if (at != std::string::npos) failStep(record.text.substr(at + thrownByLazy.size()));
}

void BringUp::take(const ConfiguratorEvent& event) {
  switch (event.kind) {
    case Kind::ServiceLine:
      return lineBegins(event, "");
    case Kind::LegacyLine:
      return lineBegins(event, "legacy");
    case Kind::LazyLine:
      return lazyLine(event);
    case Kind::LazyCreation:
      return lazyCreationBegins();
    case Kind::Opening:
    case Kind::Resolving:
    case Kind::CallingCreator:
    case Kind::CallingInit:
      return advance(event);
    case Kind::InitTook:
      return initTook(event);
    case Kind::CreationFailed:
      return failStep(event.text);
    case Kind::IncompleteLine:
      return fail("a line with too few fields", event.text);
    case Kind::InvalidLine:
      return fail("a line that is no directive", event.text);
    case Kind::ProcessStarted:
      return processStarted(event);
    case Kind::ProcessFailed:
      return fail("process " + event.program, event.text);
    case Kind::FileNotOpened:
      fileNotOpened_ = true;
      return fail("the directive file", event.text);
    case Kind::Record:
    case Kind::Lookup:
    case Kind::Other:
      return;
  }
}

void BringUp::lineBegins(const ConfiguratorEvent& event, const std::string& mode) {
  failStep(notFinished);
  Step step;
  step.service.library = event.library;
  step.service.channel = event.channel;
  step.service.interfaces = event.interfaces;
  step.creator = event.creator;
  const std::lock_guard lock(mutex_);
  step.service.mode = mode.empty() ? modeOf(step) : mode;
  step.row = board_.begins(statusOf(step));
  steps_[std::this_thread::get_id()] = std::move(step);
}

void BringUp::lazyLine(const ConfiguratorEvent& event) {
  failStep(notFinished);
  Step step;
  step.lazy = true;
  step.service.library = event.library;
  step.service.channel = event.channel;
  step.service.interfaces = event.interfaces;
  step.creator = event.creator;
  {
    const std::lock_guard lock(mutex_);
    step.service.mode = modeOf(step);
    lazyLines_.push_back(step);
  }
  board_.isLazy(statusOf(step));
  report_.serviceAwaited(step.service);
}

void BringUp::lazyCreationBegins() {
  failStep(notFinished);
  Step step;
  step.lazy = true;
  // It is made on the thread of its executor, which serves the service's channel.
  step.service.channel = Trace::servedByThisThread();
  const std::lock_guard lock(mutex_);
  step.row = board_.lazyBegins(step.service.channel);
  steps_[std::this_thread::get_id()] = std::move(step);
}

void BringUp::advance(const ConfiguratorEvent& event) {
  const std::lock_guard lock(mutex_);
  const auto found = steps_.find(std::this_thread::get_id());
  if (found == steps_.end()) return;
  Step& step = found->second;
  // The proxies that a service looks up in its `init` bring libraries of their own.
  if (step.place) {
    if (event.kind == Kind::CallingInit) advanceTo(step, "init of " + step.service.type);
    return;
  }
  if (event.kind == Kind::Opening) {
    step.service.library = event.library;
    advanceTo(step, "the opening of library " + event.library);
  } else if (event.kind == Kind::Resolving) {
    step.creator = event.library;
  } else if (event.kind == Kind::CallingCreator) {
    advanceTo(step, "creator " + step.creator + " of " + step.service.library);
  }
}

void BringUp::serviceAdded(const Service* service, const CommsChannelIfc* channel,
                           const std::string& interfaces) {
  const std::string type = describe(static_cast<const Executable*>(service));
  const std::lock_guard lock(mutex_);
  Step& step = steps_[std::this_thread::get_id()];
  step.service.service = service;
  step.service.type = type;
  step.service.interfaces = interfaces;
  step.service.channel = channel == nullptr ? std::string() : channel->getName();
  if (step.lazy) step.service.mode = modeOf(step);
  // A legacy service goes straight to its `init`; the others are announced before.
  if (!step.row) {
    step.row = step.lazy ? board_.lazyRecorded(step.service.channel, interfaces)
                         : board_.begins(statusOf(step));
  }
  if (step.row) board_.recorded(*step.row, type, step.service.mode);
  advanceTo(step, (channel == nullptr ? "init of " : "the announcement of ") + type);
  step.place = ledger_.add(step.service);
}

void BringUp::initTook(const ConfiguratorEvent& event) {
  const std::optional<Step> step = takeStep();
  if (!step || !step->place) return;
  if (step->row) board_.isUp(*step->row, event.duration);
  report_.serviceUp(ledger_.markUp(*step->place), event.duration);
}

void BringUp::processStarted(const ConfiguratorEvent& event) {
  ++processes_;
  const auto started = StartedProcesses::list();
  report_.processUp(event.program, started.empty() ? 0 : started.back().id);
}

void BringUp::fail(const std::string& what, const std::string& why) {
  ++failures_;
  report_.failed(what, why);
}

void BringUp::fail(const Step& step, const std::string& why) {
  const std::string name = nameOf(step);
  if (step.row) {
    board_.failed(*step.row, why);
  } else if (step.lazy) {
    board_.lazyFailed(statusOf(step), why);
  }
  if (step.lazy) {
    const std::lock_guard lock(mutex_);
    if (!failedLazily_.insert(name + why).second) return;
  }
  fail(name, why);
}

void BringUp::failStep(const std::string& why) {
  const std::optional<Step> step = takeStep();
  if (step) fail(*step, why);
}

std::optional<BringUp::Step> BringUp::takeStep() {
  const std::lock_guard lock(mutex_);
  const auto found = steps_.find(std::this_thread::get_id());
  if (found == steps_.end()) return std::nullopt;
  Step step = std::move(found->second);
  steps_.erase(found);
  return step;
}

std::string BringUp::nameOf(const Step& step) const {
  const std::string& interfaces = step.service.interfaces;
  if (!interfaces.empty()) return interfaces.substr(0, interfaces.find_last_not_of(' ') + 1);
  // A lazy service that was never recorded; its line in the file knows its interfaces.
  const std::lock_guard lock(mutex_);
  for (const Step& line : lazyLines_) {
    if (line.service.channel == step.service.channel) return line.service.interfaces;
  }
  return step.creator + " of " + step.service.library;
}

/** Called with the lock held. */
std::string BringUp::modeOf(const Step& step) const {
  const ServiceEntry& service = step.service;
  const std::string mode =
      modes_.find(service.library, step.creator, service.channel, service.interfaces);
  if (!step.lazy) return mode;
  return mode.empty() ? "lazy" : mode + ", lazy";
}

/** Called with the lock held. */
void BringUp::advanceTo(Step& step, const std::string& phase) {
  step.phase = phase;
  if (step.row) board_.advances(*step.row, phase);
}

ServiceStatus BringUp::statusOf(const Step& step) {
  ServiceStatus status;
  status.interfaces = step.service.interfaces;
  status.channel = step.service.channel;
  status.library = step.service.library;
  status.creator = step.creator;
  status.mode = step.service.mode;
  return status;
}

void BringUp::stopped() {
  for (const ServiceEntry& service : ledger_.markStopped()) report_.serviceStopped(service);
}

void BringUp::deleted() {
  board_.deleted();
  for (const ServiceEntry& service : ledger_.markDeleted()) report_.serviceDeleted(service);
}

}  // namespace zerva
