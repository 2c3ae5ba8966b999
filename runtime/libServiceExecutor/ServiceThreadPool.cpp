#include "framework/ServiceThreadPool.h"

#include <algorithm>
#include <utility>

#include "framework/ServiceExecutor.h"
#include "framework/Threader.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"
#include "runtime/libServiceExecutor/PoolState.h"
#include "runtime/libServiceExecutor/UnrecordedServices.h"

ServiceThreadPool::ServiceThreadPool(int size, InvokeInterceptorDispatcher* dispatcher)
    : state_(std::make_unique<State>(static_cast<unsigned>(std::max(size, 1)), dispatcher)) {}

ServiceThreadPool::~ServiceThreadPool() {
  for (;;) {
    ServiceExecutor* left = nullptr;
    {
      const std::lock_guard lock(state_->executorsMutex);
      if (state_->executors.empty()) {
        break;
      }
      left = *state_->executors.begin();
    }
    // Nobody knows its service either: the repository would have deleted both.
    const auto core = zerva::LiveExecutors::coreOf(left);
    delete left;  // takes itself out of the set
    zerva::keepUnrecorded(core->service());
  }
  state_->end();
}

bool ServiceThreadPool::execute(std::function<void()> task) {
  return state_->execute(std::move(task));
}

void ServiceThreadPool::add(ServiceExecutor* executor) {
  const std::lock_guard lock(state_->executorsMutex);
  state_->executors.insert(executor);
}

void ServiceThreadPool::remove(ServiceExecutor* executor) {
  const std::lock_guard lock(state_->executorsMutex);
  state_->executors.erase(executor);
}

InvokeInterceptorDispatcher* ServiceThreadPool::dispatcher() const { return state_->dispatcher; }

ServiceThreadPool::State::State(unsigned size, InvokeInterceptorDispatcher* kept)
    : dispatcher(kept), size_(size) {}

ServiceThreadPool::State::~State() = default;

bool ServiceThreadPool::State::execute(std::function<void()> task) {
  std::unique_lock lock(mutex_);
  if (ending_) {
    return false;
  }
  const std::uint64_t number = ++lastTask_;
  tasks_.push_back({number, std::move(task)});
  if (!needsThread()) {
    changed_.notify_one();
    return true;
  }
  if (addThread(lock) || !workers_.empty()) {
    return true;  // without a new thread the task starts when one of the others is free
  }
  const auto mine = std::find_if(tasks_.begin(), tasks_.end(),
                                 [&](const Task& queued) { return queued.number == number; });
  if (mine == tasks_.end()) {
    return true;
  }
  const std::function<void()> refused = std::move(mine->run);  // freed after the lock
  tasks_.erase(mine);
  lock.unlock();
  return false;
}

void ServiceThreadPool::State::leave() {
  std::unique_lock lock(mutex_);
  --running_;
  ++waiting_;
  if (needsThread()) {
    addThread(lock);
  } else {
    changed_.notify_one();
  }
}

void ServiceThreadPool::State::comeBack() {
  const std::lock_guard lock(mutex_);
  --waiting_;
  ++running_;
}

/** Makes a thread; the lock is released while the system does. */
bool ServiceThreadPool::State::addThread(std::unique_lock<std::mutex>& lock) {
  Workers ended;
  ended.swap(ended_);
  workers_.push_back(std::make_unique<Worker>(*this));
  const auto added = std::prev(workers_.end());
  ++starting_;
  lock.unlock();
  for (const auto& worker : ended) {
    worker->waitForThreadCompletion();
  }
  unsigned long threadId = 0;
  const bool started = Threader().spawn(&threadId, added->get(), "pool", THREAD_PRIORITY_NORMAL, 0);
  lock.lock();
  if (!started) {
    --starting_;
    workers_.erase(added);
    changed_.notify_all();
  }
  return started;
}

void ServiceThreadPool::State::work(Worker& worker) {
  zerva::servingThread().place = this;
  std::unique_lock lock(mutex_);
  --starting_;
  for (;;) {
    ++idle_;
    changed_.wait(lock, [this] { return mayStart() || ending_ || tooMany(); });
    --idle_;
    if (!mayStart()) {
      break;
    }
    std::function<void()> task = std::move(tasks_.front().run);
    tasks_.pop_front();
    ++running_;
    lock.unlock();
    task();
    task = nullptr;
    lock.lock();
    --running_;
    if (mayStart()) {
      changed_.notify_one();
    }
  }
  const auto self = std::find_if(workers_.begin(), workers_.end(),
                                 [&](const auto& known) { return known.get() == &worker; });
  ended_.splice(ended_.end(), workers_, self);
  changed_.notify_all();
}

void ServiceThreadPool::State::end() {
  std::unique_lock lock(mutex_);
  ending_ = true;
  changed_.notify_all();
  changed_.wait(lock, [this] { return workers_.empty(); });
  Workers ended;
  ended.swap(ended_);
  lock.unlock();
  for (const auto& worker : ended) {
    worker->waitForThreadCompletion();
  }
}
