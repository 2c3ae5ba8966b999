#include "framework/FwkTimer.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "FrameworkContext.h"
#include "framework/Executable.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/PlatformInternal.h"
#include "tests/fakes/Recording.h"

using zerva::fakes::called;
using zerva::fakes::Nested;
using zerva::fakes::Objects;
using zerva::fakes::Platform;

namespace {

struct Timer {
  Executable* owner;
  std::int64_t period;
  /** When it expires next; no value while it stands still. */
  std::optional<std::int64_t> due;
};

}  // namespace

struct FwkTimer::State {
  FrameworkContext* context;
  std::map<int, Timer> timers{};
  int lastId = 0;
  bool down = false;

  Timer* find(int id) {
    const auto found = timers.find(id);
    return found == timers.end() ? nullptr : &found->second;
  }

  bool start(int id, bool evenIfItRuns) {
    Timer* timer = find(id);
    if (down || timer == nullptr || (timer->due && !evenIfItRuns)) return false;
    timer->due = Platform::monotonic() + timer->period;
    return true;
  }
};

namespace {

/** Delivers one expiry that falls due until a time, if there is one, and says whether. */
struct Clock {
  const FwkTimer* timer;
  std::function<bool(std::int64_t)> deliver;
};

std::vector<Clock>& clocks() {
  static std::vector<Clock> instance;
  return instance;
}

/** Records a call and gives the scripted result, or the natural one. */
template <class Result>
Result answered(const void* timer, const std::string& operation, const std::string& arguments,
                Result natural) {
  called(timer, operation, {arguments});
  return static_cast<Result>(
      Platform::answerOf(Objects::name(timer) + "." + operation + "(" + arguments, natural));
}

}  // namespace

void zerva::fakes::Expiries::deliverUntil(std::int64_t nanoseconds) {
  for (bool delivered = true; delivered;) {
    delivered = false;
    const auto now = clocks();
    for (const auto& clock : now) {
      if (clock.deliver(nanoseconds)) delivered = true;
    }
  }
}

FwkTimer::FwkTimer(FrameworkContext* context) : state_(new State{context}) {
  zerva::fakes::constructed(this, "FwkTimer", {Objects::name(context)});
  clocks().push_back(Clock{this, [state = state_.get()](std::int64_t end) {
                             if (state->down) return false;
                             int next = 0;
                             for (const auto& [id, timer] : state->timers) {
                               if (timer.due && *timer.due <= end &&
                                   (next == 0 || *timer.due < *state->timers[next].due)) {
                                 next = id;
                               }
                             }
                             if (next == 0) return false;
                             Timer& timer = state->timers[next];
                             const std::int64_t due = *timer.due;
                             timer.due = due + timer.period;
                             Platform::setMonotonic(due / 1'000'000'000, due % 1'000'000'000);
                             const Nested nested;
                             timer.owner->timerExpired(next);
                             return true;
                           }});
}

FwkTimer::~FwkTimer() {
  if (!Objects::died(this)) return;
  std::erase_if(clocks(), [this](const Clock& clock) { return clock.timer == this; });
  state_.reset();
}

int FwkTimer::createTimer(Executable* owner, int period) {
  int id = 0;
  if (owner != nullptr && period >= 1 && !state_->down) {
    id = ++state_->lastId;
    state_->timers[id] = Timer{owner, std::int64_t{period} * 1'000'000, std::nullopt};
  }
  return answered(this, "createTimer", Objects::name(owner) + ", " + std::to_string(period), id);
}

bool FwkTimer::startTimer(int id) {
  return answered(this, "startTimer", std::to_string(id), state_->start(id, false));
}

bool FwkTimer::stopTimer(int id) {
  Timer* timer = state_->find(id);
  const bool ran = timer != nullptr && timer->due.has_value();
  if (ran) timer->due.reset();
  return answered(this, "stopTimer", std::to_string(id), ran);
}

bool FwkTimer::resetTimer(int id) {
  return answered(this, "resetTimer", std::to_string(id), state_->start(id, true));
}

bool FwkTimer::deleteTimer(int id) {
  return answered(this, "deleteTimer", std::to_string(id), state_->timers.erase(id) == 1);
}

bool FwkTimer::timerRunning(int id) {
  const Timer* timer = state_->find(id);
  return answered(this, "timerRunning", std::to_string(id),
                  !state_->down && timer != nullptr && timer->due.has_value());
}

void FwkTimer::shutdown() {
  called(this, "shutdown", {});
  state_->down = true;
}
