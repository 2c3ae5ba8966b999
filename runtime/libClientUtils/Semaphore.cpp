#include "framework/Semaphore.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>
#include <thread>

struct Semaphore::State {
  State(int initial, int most, bool mayNest) : maximum(most), recursive(mayNest), free(initial) {}

  bool takenAgainBy(std::thread::id thread) const {
    return recursive && taken > 0 && lastTaker == thread;
  }

  const int maximum;
  const bool recursive;

  std::mutex mutex;
  std::condition_variable given;
  // Guarded by mutex.
  int free;
  int waiting = 0;
  int taken = 0;
  int takenAgain = 0;
  std::thread::id lastTaker;
};

Semaphore::Semaphore(int initial, int maximum, bool recursive) {
  static_assert(sizeof(State) <= kStateSize && alignof(State) <= alignof(std::max_align_t));
  new (state_) State(initial, maximum, recursive);
}

Semaphore::~Semaphore() { state().~State(); }

Semaphore::State& Semaphore::state() { return *std::launder(reinterpret_cast<State*>(state_)); }

bool Semaphore::take(int timeout) {
  State& s = state();
  const auto self = std::this_thread::get_id();
  std::unique_lock lock(s.mutex);
  if (s.takenAgainBy(self)) {
    ++s.takenAgain;
    return true;
  }
  if (s.free <= 0 && timeout != 0) {
    ++s.waiting;
    const auto isFree = [&s] { return s.free > 0; };
    if (timeout < 0) {
      s.given.wait(lock, isFree);
    } else {
      // A deadline of this clock does not move when somebody sets the time of day.
      s.given.wait_until(
          lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout), isFree);
    }
    --s.waiting;
  }
  if (s.free <= 0) return false;
  --s.free;
  ++s.taken;
  s.lastTaker = self;
  return true;
}

bool Semaphore::give() {
  State& s = state();
  const std::lock_guard lock(s.mutex);
  if (s.takenAgain > 0) {
    --s.takenAgain;
    return true;
  }
  if (s.free >= s.maximum) return false;
  ++s.free;
  if (s.taken > 0) --s.taken;
  // Under the lock: once it is released, a thread that was woken may delete the semaphore.
  if (s.waiting > 0) s.given.notify_one();
  return true;
}
