#include "framework/Threadable.h"

#include "framework/Logging.h"
#include "runtime/libClientUtils/ThreadState.h"
#include "runtime/libClientUtils/Waiting.h"

namespace {

constexpr char kModule[] = "Threads";
constexpr char kSource[] = "runtime/libClientUtils";
constexpr int kError = 2;

}  // namespace

Threadable::Threadable() : state_(std::make_shared<State>()) {}

Threadable::~Threadable() {
  const std::lock_guard lock(state_->mutex);
  if (state_->phase != State::Phase::kThere) return;
  // Nobody can ask for this thread any more, so the system is to clean up after it.
  pthread_detach(state_->thread);
  state_->phase = State::Phase::kNone;
}

void Threadable::waitForThreadCompletion() {
  // Another waiter may delete this object as soon as the thread has ended.
  const std::shared_ptr<State> state = state_;
  std::unique_lock lock(state->mutex);
  if (state->phase == State::Phase::kNone) return;
  // The body may get another thread while this one is waited for.
  const std::shared_ptr<const zerva::Description> body = state->body;
  const bool own = state->onOwnThread();
  lock.unlock();
  if (own) {
    logAppUni(kModule, kSource, kError, __LINE__,
              "The thread body %s waits for its own thread; the wait is given up",
              body->text().c_str());
    return;
  }
  const zerva::Waiting waiting("the end of the thread body ", body);
  lock.lock();
  state->join(lock);
}

const std::shared_ptr<Threadable::State>& Threadable::threadState() const { return state_; }
