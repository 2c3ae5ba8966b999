#include "runtime/libClientUtils/Parker.h"

#include <pthread.h>

#include <algorithm>
#include <system_error>

#include "runtime/libClientUtils/Futex.h"
#include "runtime/libClientUtils/Processors.h"

namespace zerva {
namespace {

// About what it takes to put a thread to sleep and to wake it on another processor.
constexpr std::chrono::microseconds kSpinTime{30};

// A look at the clock takes as long as some of these.
constexpr int kLooksBetweenClocks = 32;

// After looking in vain it is left out once, then three times, seven, and so on up to this.
constexpr unsigned kMostLeftOut = 127;

/** The calling thread's; a thread that still waits while it ends gets another one. */
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

bool Parker::park(Clock::time_point deadline) { return takeToken() || spin() || sleep(&deadline); }

void Parker::park() {
  if (!takeToken() && !spin()) sleep(nullptr);
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

/** Looks whether somebody unparks the thread soon. @returns whether somebody did. */
bool Parker::spin() {
  if (leftOut_ > 0) {
    --leftOut_;
    return false;
  }
  if (mayUseSeveralProcessors()) {
    const Clock::time_point end = Clock::now() + kSpinTime;
    do {
      for (int looks = kLooksBetweenClocks; looks > 0; --looks) {
        if (takeToken()) {
          inVain_ = 0;
          return true;
        }
        pauseProcessor();
      }
    } while (Clock::now() < end);
  }
  inVain_ = std::min(2 * inVain_ + 1, kMostLeftOut);
  leftOut_ = inVain_;
  return false;
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
