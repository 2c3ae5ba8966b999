// A service that behaves: on a thread of its own it waits for a timer, calls relays in this process
// and in another, says how each of that went, and then has the process end. With ZERVA_BUSY_HOLD in
// the environment it also waits for a call that is not answered.

#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include "SvcRTEContext.h"
#include "framework/Service.h"
#include "tests/plugins/Journal.h"
#include "tests/plugins/relay/Relay.h"

namespace {

constexpr const char* kName = "BusyIfc";

using Clock = std::chrono::steady_clock;

void say(const char* what, const char* how) {
  std::printf("busy: %s: %s\n", what, how);
  std::fflush(stdout);
}

/** Has the process end, however the thread leaves. */
class TheEnd {
 public:
  TheEnd() = default;
  ~TheEnd() { kill(getpid(), SIGTERM); }
  TheEnd(const TheEnd&) = delete;
  TheEnd& operator=(const TheEnd&) = delete;
};

/** How long what takes a while may take. */
std::chrono::seconds patience() {
  const char* const seconds = std::getenv("ZERVA_BUSY_SECONDS");
  return std::chrono::seconds(seconds == nullptr ? 60 : std::atoi(seconds));
}

}  // namespace

class BusyService : public Service {
 public:
  BusyService() { zerva::journal(kName, "made"); }
  BusyService(const BusyService&) = delete;
  BusyService& operator=(const BusyService&) = delete;
  ~BusyService() override { zerva::journal(kName, "deleted"); }

  void init(SvcRTEContext* context) override {
    zerva::journal(kName, "initialised");
    context_ = context;
    timer_ = context->createTimer(this, 2);
    if (!context->startTimer(timer_)) say("timer", "it was not started");
  }

  void timerExpired(int /*timer*/) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    ++expiries_;
    changed_.notify_all();
  }

  void run() override {
    const TheEnd theEnd;
    zerva::journal(kName, "begun");
    attempt("timer", [this] { awaitExpiries(); });
    attempt("here", [this] { call("First", {"Third"}); });
    attempt("lazy", [this] { call("Third", {}); });
    attempt("again", [this] { call("First", {"Third", "First"}); });
    attempt("there", [this] { callThere(); });
    attempt("and back", [this] { call("First", {"Second", "Third", "Second"}); });
    if (std::getenv("ZERVA_BUSY_HOLD") != nullptr) {
      attempt("late", [this] { call("First", {"hold"}); });
    }
    zerva::journal(kName, "over");
  }

 private:
  template <typename Body>
  void attempt(const char* what, Body body) {
    try {
      body();
      say(what, "done");
    } catch (const std::exception& error) {
      say(what, error.what());
    }
  }

  void awaitExpiries() {
    std::unique_lock<std::mutex> lock(mutex_);
    if (!changed_.wait_for(lock, patience(), [this] { return expiries_ >= 3; })) {
      throw std::runtime_error("it does not expire");
    }
  }

  void call(const std::string& ifc, const std::vector<std::string>& way) {
    auto* const relay = dynamic_cast<Relay*>(context_->findService(ifc));
    if (relay == nullptr) throw std::runtime_error(ifc + " is not found");
    relay->pass(way);
  }

  /** The other process takes a while until it is up. */
  void callThere() {
    const auto deadline = Clock::now() + patience();
    std::unique_lock<std::mutex> lock(mutex_);
    while (Clock::now() < deadline && context_->timerRunning(timer_)) {
      lock.unlock();
      if (context_->findService("Second") != nullptr) break;
      lock.lock();
      const int before = expiries_;
      changed_.wait_for(lock, std::chrono::milliseconds(50),
                        [&] { return expiries_ > before + 10; });
    }
    if (lock.owns_lock()) lock.unlock();
    call("Second", {"First", "Second"});
  }

  SvcRTEContext* context_ = nullptr;
  int timer_ = 0;
  std::mutex mutex_;
  std::condition_variable changed_;
  int expiries_ = 0;  // guarded by mutex_
};

extern "C" ZERVA_EXPORT Service* createBusy() { return new BusyService; }
