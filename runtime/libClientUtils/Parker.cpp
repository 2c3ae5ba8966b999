#include "runtime/libClientUtils/Parker.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <system_error>

#include "runtime/libClientUtils/Futex.h"
#include "runtime/libClientUtils/Processors.h"

namespace zerva {
namespace {

// About what it takes to put a thread to sleep and to wake it on another processor.
constexpr std::chrono::microseconds kSpinTime{30};

// What comes within this time came sooner than a thread that sleeps could have been woken.
constexpr std::chrono::microseconds kOfUse{60};

// A look at the clock takes as long as some of these.
constexpr int kLooksBetweenClocks = 32;

// What is asked of the system is asked again after so many times; a thread that was confined to one
// processor meanwhile looks in vain, which it soon leaves out anyway.
constexpr unsigned kLingersBetweenAsking = 64;

// After looking in vain it is left out once, then three times, seven, and so on up to this.
constexpr unsigned kMostLeftOut = 127;

/** The calling thread's; null when it has none yet, or is about to end. */
thread_local const std::shared_ptr<Parker>* own = nullptr;

/** Gives back a thread's place when the thread ends. */
class ThreadKey {
 public:
  ThreadKey() {
    check(::pthread_key_create(&key_, [](void* value) {
      own = nullptr;
      delete static_cast<const std::shared_ptr<Parker>*>(value);
    }));
  }

  void set(const std::shared_ptr<Parker>* value) const {
    check(::pthread_setspecific(key_, value));
  }

 private:
  static void check(int error) {
    if (error != 0) throw std::system_error(error, std::generic_category(), "a thread's place");
  }

  pthread_key_t key_ = 0;
};

}  // namespace

const std::shared_ptr<Parker>& Parker::ofThisThread() {
  // A destructor of the language's own would have to be noted, for which the C library takes memory
  // and ends the process when there is none. The value of one of the first keys has its place.
  static const ThreadKey key;
  if (own == nullptr) {
    auto made = std::make_unique<const std::shared_ptr<Parker>>(std::make_shared<Parker>());
    key.set(made.get());
    own = made.release();
  }
  return *own;
}

Parker::Given::Given(const std::shared_ptr<Parker>& parker) { own = &parker; }

// One that still waits while the thread ends gets another one.
Parker::Given::~Given() { own = nullptr; }

bool Parker::park(Clock::time_point deadline) {
  return takeToken() || linger() || sleep(&deadline);
}

void Parker::park() {
  if (!takeToken() && !linger()) sleep(nullptr);
}

void Parker::unpark() {
  // Nothing is touched after the exchange but the address, which wakes nobody wrongly: a thread
  // that wakes without a reason sleeps again.
  if (state_.exchange(kUnparked, std::memory_order_acq_rel) == kSleeping) wakeOne(state_);
}

bool Parker::takeToken() {
  std::uint32_t unparked = kUnparked;
  return state_.load(std::memory_order_relaxed) == kUnparked &&
         state_.compare_exchange_strong(unparked, kAwake, std::memory_order_acquire);
}

/** Gives somebody the time to unpark the thread before it sleeps. @returns whether somebody did. */
bool Parker::linger() {
  if (leftOut_ > 0) {
    --leftOut_;
    return false;
  }
  if (untilAsked_ == 0) {
    several_ = mayUseSeveralProcessors();
    untilAsked_ = kLingersBetweenAsking;
  }
  --untilAsked_;
  const Clock::time_point begin = Clock::now();
  const bool came = several_ ? spin(begin + kSpinTime) : yield();
  // One that came late would have come in time to a thread that sleeps: the processor is wanted.
  if (came && Clock::now() - begin < kOfUse) {
    inVain_ = 0;
  } else {
    inVain_ = std::min(2 * inVain_ + 1, kMostLeftOut);
    leftOut_ = inVain_;
  }
  return came;
}

/** For whoever runs on another processor. */
bool Parker::spin(Clock::time_point end) {
  do {
    for (int looks = kLooksBetweenClocks; looks > 0; --looks) {
      if (takeToken()) return true;
      pauseProcessor();
    }
  } while (Clock::now() < end);
  return false;
}

/** For whoever waits for this processor. */
bool Parker::yield() {
  ::sched_yield();
  return takeToken();
}

/** @returns whether the thread was unparked; false when the deadline came first. */
bool Parker::sleep(const Clock::time_point* deadline) {
  std::uint32_t awake = kAwake;
  state_.compare_exchange_strong(awake, kSleeping, std::memory_order_relaxed);
  bool inTime = true;
  while (inTime && state_.load(std::memory_order_relaxed) == kSleeping) {
    inTime = sleepWhile(state_, kSleeping, deadline);
  }
  return state_.exchange(kAwake, std::memory_order_acquire) == kUnparked;
}

}  // namespace zerva
