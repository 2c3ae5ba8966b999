#include "runtime/libFwkTimer/TimerCore.h"

#include <algorithm>

#include "FrameworkContext.h"
#include "framework/Executable.h"
#include "framework/Logging.h"
#include "framework/Threader.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "runtime/libClientUtils/Waiting.h"
#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {

namespace {

/** On its way through the owner's channel. */
class TimerExpiry final : public Expiry {
 public:
  TimerExpiry(std::weak_ptr<TimerCore> timers, int id, unsigned run, const Executable* owner)
      : timers_(std::move(timers)), id_(id), run_(run), owner_(owner) {}

  ~TimerExpiry() override { settle(); }
  TimerExpiry(const TimerExpiry&) = delete;
  TimerExpiry& operator=(const TimerExpiry&) = delete;

  const Executable* owner() const override { return owner_; }

  void fire() override {
    settle();  // what is due while the owner is busy is sent again
    if (const auto timers = timers_.lock()) {
      timers->fire(id_, run_);
    }
  }

 private:
  void settle() {
    const auto timers = timers_.lock();
    if (timers != nullptr && !settled_) {
      settled_ = true;
      timers->settled(id_, run_);
    }
  }

  const std::weak_ptr<TimerCore> timers_;
  const int id_;
  const unsigned run_;
  const Executable* const owner_;
  bool settled_ = false;
};

}  // namespace

namespace {

// How long after there was no memory it is asked for again.
constexpr std::chrono::milliseconds kPause{10};

}  // namespace

/** While it lives, the calling thread is outside: in the context or in an owner. */
class TimerCore::Calling {
 public:
  /** @param lock held; released while this lives. */
  Calling(TimerCore& core, std::unique_lock<std::mutex>& lock) : core_(core), lock_(lock) {
    core_.calling_.push_back(std::this_thread::get_id());
    lock_.unlock();
  }

  ~Calling() {
    lock_.lock();
    auto& calling = core_.calling_;
    calling.erase(std::find(calling.begin(), calling.end(), std::this_thread::get_id()));
    core_.changed_.notify_all();
  }
  Calling(const Calling&) = delete;
  Calling& operator=(const Calling&) = delete;

 private:
  TimerCore& core_;
  std::unique_lock<std::mutex>& lock_;
};

TimerCore::TimerCore(FrameworkContext* context) : context_(context), thread_(*this) {}

int TimerCore::create(Executable* owner, int period) {
  const std::lock_guard lock(mutex_);
  if (owner == nullptr || period < 1 || over_) {
    return 0;
  }
  const int id = ++lastId_;
  Timer timer;
  timer.owner = owner;
  timer.period = std::chrono::milliseconds(period);
  timers_.emplace(id, timer);
  return id;
}

bool TimerCore::start(int id, bool evenIfRunning) {
  std::unique_lock lock(mutex_);
  if (over_ || !timers_.contains(id) || !askChannel(lock, id) || !needThread(lock)) {
    return false;
  }
  const auto found = timers_.find(id);
  // The lock was released: the timer may be gone, or all of them.
  if (over_ || found == timers_.end() || (found->second.running && !evenIfRunning)) {
    return false;
  }
  Timer& timer = found->second;
  halt(id, timer);
  timer.running = true;
  ++timer.run;
  timer.pending = false;
  timer.next = Clock::now() + timer.period;
  schedule_.emplace(timer.next, id);
  changed_.notify_all();
  return true;
}

bool TimerCore::stop(int id) {
  const std::lock_guard lock(mutex_);
  const auto found = timers_.find(id);
  if (found == timers_.end() || !found->second.running) {
    return false;
  }
  halt(id, found->second);
  return true;
}

bool TimerCore::remove(int id) {
  const std::lock_guard lock(mutex_);
  const auto found = timers_.find(id);
  if (found == timers_.end()) {
    return false;
  }
  halt(id, found->second);
  timers_.erase(found);
  return true;
}

bool TimerCore::running(int id) const {
  const std::lock_guard lock(mutex_);
  const auto found = timers_.find(id);
  return found != timers_.end() && found->second.running;
}

void TimerCore::shutdown() {
  const auto self = std::this_thread::get_id();
  std::unique_lock lock(mutex_);
  over_ = true;
  for (auto& [id, timer] : timers_) {
    halt(id, timer);
  }
  changed_.notify_all();
  // Two owners that shut down at the same time do not wait for each other.
  ending_.push_back(self);
  changed_.notify_all();
  const auto others = [&] {
    return std::any_of(calling_.begin(), calling_.end(), [&](const std::thread::id thread) {
      return std::find(ending_.begin(), ending_.end(), thread) == ending_.end();
    });
  };
  if (others()) {
    lock.unlock();
    const Waiting waiting("a timer's owner that is being called");
    lock.lock();
    changed_.wait(lock, [&] { return !others(); });
  }
  ending_.erase(std::find(ending_.begin(), ending_.end(), self));
}

void TimerCore::end() { thread_.waitForThreadCompletion(); }

void TimerCore::fire(int id, unsigned run) {
  std::unique_lock lock(mutex_);
  const auto found = timers_.find(id);
  if (found == timers_.end() || !found->second.running || found->second.run != run) {
    return;
  }
  Executable* const owner = found->second.owner;
  const Calling calling(*this, lock);
  owner->timerExpired(id);
}

void TimerCore::settled(int id, unsigned run) {
  const std::lock_guard lock(mutex_);
  const auto found = timers_.find(id);
  if (found != timers_.end() && found->second.run == run) {
    found->second.pending = false;
  }
}

/** Finds out, once, which channel the timer's owner has. */
bool TimerCore::askChannel(std::unique_lock<std::mutex>& lock, int id) {
  const Timer& timer = timers_.at(id);
  if (timer.channelAsked) {
    return true;
  }
  Executable* const owner = timer.owner;
  std::string channel;
  {
    // Counted like a delivery: once `shutdown` returned, nobody is in the context.
    const Calling calling(*this, lock);
    channel = context_->findChannel(owner);
  }
  const auto found = timers_.find(id);
  if (found == timers_.end()) {
    return false;
  }
  found->second.channel = std::move(channel);
  found->second.channelAsked = true;
  return true;
}

/** Makes the thread with the first timer that is started. */
bool TimerCore::needThread(std::unique_lock<std::mutex>& lock) {
  if (threadStarted_) {
    return true;
  }
  threadStarted_ = true;
  lock.unlock();
  unsigned long threadId = 0;
  bool started = false;
  {
    // The thread is for all timers, whoever made the first one.
    const zerva::TraceWorkScope nobody{{}};
    started = Threader().spawn(&threadId, &thread_, "timer", THREAD_PRIORITY_NORMAL, 0);
  }
  lock.lock();
  threadStarted_ = started;
  if (!started) {
    // Whoever counted on the thread meanwhile finds his timer standing still.
    for (auto& [id, timer] : timers_) {
      halt(id, timer);
    }
  }
  return started;
}

void TimerCore::halt(int id, Timer& timer) {
  if (timer.running) {
    timer.running = false;
    schedule_.erase({timer.next, id});
  }
}

std::vector<TimerCore::Due> TimerCore::takeDue(Clock::time_point now) {
  std::vector<Due> due;
  while (!schedule_.empty() && schedule_.begin()->first <= now) {
    const int id = schedule_.begin()->second;
    Timer& timer = timers_.at(id);
    // First, since there may be no memory for it: a timer must not fall out of the schedule then.
    due.reserve(due.size() + 1);
    auto entry = schedule_.extract(schedule_.begin());
    // Periods that were missed, on a machine that was suspended say, are not made up for.
    const auto missed = (now - timer.next) / timer.period;
    timer.next += timer.period * (missed + 1);
    entry.value() = {timer.next, id};
    schedule_.insert(std::move(entry));
    if (!timer.pending) {
      due.push_back({id, timer.run, timer.owner, timer.channel});
      timer.pending = true;
    }
  }
  return due;
}

void TimerCore::work() {
  std::unique_lock lock(mutex_);
  while (!over_) {
    if (schedule_.empty()) {
      changed_.wait(lock);
      continue;
    }
    const auto next = schedule_.begin()->first;
    if (next > Clock::now()) {
      changed_.wait_until(lock, next);
      continue;
    }
    std::vector<Due> due;
    if (exceptionOf([&] { due = takeDue(Clock::now()); })) {
      // There was no memory. The thread is every timer's, so it goes on and tries again.
      changed_.wait_for(lock, kPause);
      continue;
    }
    lock.unlock();
    for (const Due& expired : due) {
      if (expired.channel.empty()) {
        callOwner(expired);
      } else if (exceptionOf([&] { send(expired); })) {
        settled(expired.id, expired.run);  // there was no memory; the next expiry is sent again
      }
    }
    lock.lock();
  }
}

void TimerCore::send(const Due& due) {
  Envelope envelope;
  envelope.chain = CallChain::begin();
  envelope.expiry = std::make_unique<TimerExpiry>(weak_from_this(), due.id, due.run, due.owner);
  const auto mailbox = ChannelDirectory::instance().findServing(due.channel, due.owner);
  if (mailbox != nullptr) {
    mailbox->deliver(envelope);
  }
}

void TimerCore::callOwner(const Due& due) {
  settled(due.id, due.run);
  if (const auto error = exceptionOf([&] { fire(due.id, due.run); })) {
    logAppUni("Timer", "runtime/libFwkTimer", 2, __LINE__, "timerExpired of timer %d failed: %s",
              due.id, error->c_str());
  }
}

}  // namespace zerva
