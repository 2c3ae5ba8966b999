#include "runtime/libClientUtils/Parker.h"

#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>

#include "runtime/libClientUtils/Futex.h"
#include "runtime/libClientUtils/Processors.h"
#include "runtime/libClientUtils/Spares.h"
#include "runtime/libClientUtils/WakeLine.h"

namespace zerva {
namespace {

// About what it takes to put a thread to sleep and to wake it on another processor.
constexpr std::chrono::microseconds kSpinTime{30};

// What comes within this time came sooner than a thread that sleeps could have been woken.
constexpr std::chrono::microseconds kOfUse{60};

// A look at the clock takes as long as some of these.
constexpr int kLooksBetweenClocks = 32;
constexpr int kReadsBetweenClocks = 4;
constexpr unsigned kYieldsBetweenClocks = 7;

// What is asked of the system is asked again after so many times; a thread that was confined to one
// processor meanwhile looks in vain, which it soon leaves out anyway.
constexpr unsigned kWaitsBetweenAsking = 64;

// After looking in vain it is left out once, then three times, seven, and so on up to this.
constexpr unsigned kMostLeftOut = 127;

/** The calling thread's; null when it has none yet, or is about to end. */
[[gnu::tls_model("initial-exec")]] constinit thread_local const std::shared_ptr<Parker>* own =
    nullptr;

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

/** While it lives, the calling thread reads an input, if nobody else did. */
class Parker::Reading {
 public:
  explicit Reading(Input& input) : input_(input), begun_(input.beginReading()) {
    // One that goes in between would leave what it has read, and nobody else would look.
    if (begun_) ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancelState_);
  }
  ~Reading() {
    if (!begun_) return;
    input_.endReading();
    ::pthread_setcancelstate(cancelState_, nullptr);
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

  explicit operator bool() const { return begun_; }

 private:
  Input& input_;
  const bool begun_;
  int cancelState_ = PTHREAD_CANCEL_ENABLE;
};

bool Parker::park(Clock::time_point deadline, Input* input) {
  if (takeToken()) return true;
  bool came = false;
  if (readAt(input, &deadline, came)) return came;
  return linger(nullptr) || sleep(&deadline);
}

void Parker::park() {
  if (takeToken()) return;
  bool came = false;
  // Kept only while it is read: the thread may then sleep for as long as the process lives.
  if (readAt(work_.lock().get(), nullptr, came)) return;
  if (linger(nullptr)) return;
  Spares::idle();
  sleep(nullptr);
}

/**
 * Waits as the one who reads.
 *
 * @param came gets whether the thread was unparked or has read something.
 * @returns false when somebody else reads, or there is nothing to be read.
 */
bool Parker::readAt(Input* input, const Clock::time_point* deadline, bool& came) {
  if (!mayRead(input)) return false;
  const Reading reading(*input);
  if (!reading) return false;
  came = linger(input) || sleepAt(*input, deadline);
  return true;
}

bool Parker::mayRead(Input* input) {
  if (input == nullptr || std::exchange(leavesReading_, false)) return false;
  askSystem();
  return !comesAfterOthers_;
}

void Parker::unpark() {
  // Nothing is touched after the exchange but the address, which wakes nobody wrongly: a thread
  // that wakes without a reason sleeps again.
  const std::uint32_t before = state_.exchange(kUnparked, std::memory_order_acq_rel);
  if (before == kSleeping) {
    wakeOne(state_);
  } else if (before >= kSleepingAtLine) {
    WakeLine::wake(static_cast<int>(before - kSleepingAtLine));
  }
}

bool Parker::takeToken() {
  std::uint32_t unparked = kUnparked;
  return state_.load(std::memory_order_relaxed) == kUnparked &&
         state_.compare_exchange_strong(unparked, kAwake, std::memory_order_acquire);
}

/** @returns whether what the thread waits for may have come. */
bool Parker::look(Input* input) {
  if (takeToken()) return true;
  if (input == nullptr) return false;
  const Input::Read read = input->read();
  if (read == Input::Read::Nothing || read == Input::Read::Part) return false;
  // Whoever it was for may read the next time.
  leavesReading_ = !takeToken();
  return true;
}

/** Gives somebody the time to unpark the thread before it sleeps. @returns as `look`. */
bool Parker::linger(Input* input) {
  if (leftOut_ > 0) {
    --leftOut_;
    return false;
  }
  askSystem();
  if (!several_) return yield(input);
  const Clock::time_point begin = Clock::now();
  const bool came = spin(begin + kSpinTime, input);
  noteUse(came && Clock::now() - begin < kOfUse);
  return came;
}

/** As `linger`, for whoever waits for this processor. */
bool Parker::yield(Input* input) {
  // To read the clock each time would take a tenth of what it takes to let somebody run. Where that
  // is of no use it is seldom done, and whether it is again is to be known soon.
  const bool timed = inVain_ != 0 || untilTimed_ == 0;
  untilTimed_ = timed ? kYieldsBetweenClocks : untilTimed_ - 1;
  const Clock::time_point begin = timed ? Clock::now() : Clock::time_point();
  ::sched_yield();
  const bool came = look(input);
  if (!came) {
    noteUse(false);
  } else if (timed) {
    noteUse(Clock::now() - begin < kOfUse);
  }
  return came;
}

/**
 * Notes whether lingering was of use. What came late was not: it would have come in time to a
 * thread that sleeps, and the processor is wanted.
 */
void Parker::noteUse(bool ofUse) {
  if (ofUse) {
    inVain_ = 0;
  } else {
    inVain_ = std::min(2 * inVain_ + 1, kMostLeftOut);
    leftOut_ = inVain_;
  }
}

/** For whoever runs on another processor. */
bool Parker::spin(Clock::time_point end, Input* input) {
  const int looks = input == nullptr ? kLooksBetweenClocks : kReadsBetweenClocks;
  do {
    for (int left = looks; left > 0; --left) {
      if (look(input)) return true;
      pauseProcessor();
    }
  } while (Clock::now() < end);
  return false;
}

/** Asks the system now and then how the thread is to wait. */
void Parker::askSystem() {
  if (untilAsked_ == 0) {
    several_ = mayUseSeveralProcessors();
    comesAfterOthers_ =
        ::sched_getscheduler(0) == SCHED_IDLE ||
        ::getpriority(PRIO_PROCESS, 0) > ::getpriority(PRIO_PROCESS, static_cast<id_t>(::getpid()));
    untilAsked_ = kWaitsBetweenAsking;
  }
  --untilAsked_;
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

/** As `sleep`, for a thread that reads; also ends when it has read something. */
bool Parker::sleepAt(Input& input, const Clock::time_point* deadline) {
  while (pollAt(input, deadline)) {
    if (look(&input)) return true;
    // What comes in pieces comes for as long as the other side likes.
    if (deadline != nullptr && Clock::now() >= *deadline) break;
  }
  return takeToken();
}

/** Waits until the thread is unparked or there is something to read. @returns false when late. */
bool Parker::pollAt(Input& input, const Clock::time_point* deadline) {
  const int line = input.wakeLine();
  std::array<pollfd, 2> ends{{{input.descriptor(), POLLIN, 0}, {line, POLLIN, 0}}};
  timespec left{};
  if (deadline != nullptr) {
    const auto time = std::max(*deadline - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    left.tv_sec = seconds.count();
    left.tv_nsec = static_cast<long>((time - seconds).count());
  }
  std::uint32_t awake = kAwake;
  if (!state_.compare_exchange_strong(awake, kSleepingAtLine + static_cast<std::uint32_t>(line),
                                      std::memory_order_relaxed)) {
    return true;
  }
  const int ready =
      ::ppoll(ends.data(), ends.size(), deadline != nullptr ? &left : nullptr, nullptr);
  std::uint32_t asleep = kSleepingAtLine + static_cast<std::uint32_t>(line);
  state_.compare_exchange_strong(asleep, kAwake, std::memory_order_relaxed);
  if (ends[1].revents != 0) WakeLine::forget(line);
  return ready != 0;
}

}  // namespace zerva
