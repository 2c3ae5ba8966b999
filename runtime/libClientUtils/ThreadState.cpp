#include "runtime/libClientUtils/ThreadState.h"

namespace {

/** Notes that the join has ended, also when the waiting thread was cancelled in it. */
class Joining {
 public:
  Joining(Threadable::State& state, std::unique_lock<std::mutex>& lock)
      : state_(state), lock_(lock) {
    state_.phase = Threadable::State::Phase::kJoining;
    lock_.unlock();
  }
  ~Joining() {
    lock_.lock();
    state_.phase = joined_ ? Threadable::State::Phase::kNone : Threadable::State::Phase::kThere;
    ++state_.joins;
    state_.changed.notify_all();
  }
  Joining(const Joining&) = delete;
  Joining& operator=(const Joining&) = delete;

  void join() { joined_ = pthread_join(state_.thread, nullptr) == 0; }

 private:
  Threadable::State& state_;
  std::unique_lock<std::mutex>& lock_;
  bool joined_ = false;
};

}  // namespace

void Threadable::State::join(std::unique_lock<std::mutex>& lock) {
  if (phase == Phase::kThere) {
    Joining(*this, lock).join();
  } else if (phase == Phase::kJoining) {
    // The body may get another thread as soon as the join has ended; that one is not waited for.
    const unsigned long before = joins;
    changed.wait(lock, [&] { return joins != before; });
  }
}
