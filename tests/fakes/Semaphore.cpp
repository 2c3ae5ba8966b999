#include "framework/Semaphore.h"

#include <condition_variable>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/SemaphoreTable.h"

using zerva::fakes::called;
using zerva::fakes::Objects;
using zerva::fakes::Platform;
using zerva::fakes::SemaphoreTable;

namespace {

/** One lock for the permits of all semaphores: a test has few threads. */
struct Permits {
  std::mutex mutex;
  std::condition_variable given;
};

Permits& permits() {
  static Permits instance;
  return instance;
}

}  // namespace

struct Semaphore::State {
  int permits;
  int maximum;
  bool recursive;
  /** Takes of the owner beyond its first, which took no permit. */
  int again = 0;
  std::thread::id owner{};
};

Semaphore::State& Semaphore::state() { return *std::launder(reinterpret_cast<State*>(state_)); }

Semaphore::Semaphore(int initial, int maximum, bool recursive) {
  static_assert(sizeof(State) <= kStateSize);
  new (state_) State{initial, maximum, recursive};
  const std::string name = SemaphoreTable::nextName();
  Objects::born(this, "Semaphore");
  if (!name.empty()) Objects::call(this, name);
  zerva::fakes::Trace::record(Objects::name(this) + " = Semaphore(" + std::to_string(initial) +
                              ", " + std::to_string(maximum) + ", " +
                              (recursive ? "true" : "false") + ")");
}

Semaphore::~Semaphore() {
  if (Objects::died(this)) state().~State();
}

bool Semaphore::take(int timeout) {
  called(this, "take", {std::to_string(timeout)});
  std::unique_lock lock(permits().mutex);
  State& now = state();
  if (now.recursive && now.owner == std::this_thread::get_id()) {
    ++now.again;
    return true;
  }
  if (now.permits == 0 && timeout < 0) {
    const std::string name = Objects::name(this);
    if (!SemaphoreTable::threadsMayWait()) throw std::logic_error("waits for ever: " + name);
    SemaphoreTable::waits(name);
    permits().given.wait(lock, [&now] { return now.permits > 0; });
    SemaphoreTable::waitsNoMore(name);
  } else if (now.permits == 0) {
    lock.unlock();
    Platform::advance(std::int64_t{timeout} * 1'000'000);
    lock.lock();
    if (now.permits == 0) return false;
  }
  --now.permits;
  now.owner = std::this_thread::get_id();
  SemaphoreTable::taken(Objects::name(this));
  return true;
}

bool Semaphore::give() {
  called(this, "give", {});
  const std::lock_guard lock(permits().mutex);
  State& now = state();
  if (now.again > 0) {
    --now.again;
    return true;
  }
  if (now.permits == now.maximum) return false;
  if (++now.permits == now.maximum) now.owner = {};
  SemaphoreTable::given(Objects::name(this));
  permits().given.notify_all();
  return true;
}
