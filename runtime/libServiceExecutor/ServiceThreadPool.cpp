#include "framework/ServiceThreadPool.h"

#include <algorithm>
#include <utility>

#include "framework/ServiceExecutor.h"
#include "framework/Threader.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"
#include "runtime/libServiceExecutor/PoolState.h"
#include "runtime/libServiceExecutor/UnrecordedServices.h"

/** While it lives, a task runs; the lock is released meanwhile. */
class ServiceThreadPool::State::Running {
 public:
  Running(State& pool, std::unique_lock<std::mutex>& lock) : pool_(pool), lock_(lock) {
    ++pool_.running_;
    lock_.unlock();
  }
  ~Running() {
    lock_.lock();
    --pool_.running_;
    // This thread looks for a task next; others are for those that come in the meantime.
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  State& pool_;
  std::unique_lock<std::mutex>& lock_;
};

/** While it lives, a thread looks for a task. Made and destroyed under the lock. */
class ServiceThreadPool::State::Looking {
 public:
  explicit Looking(State& pool) : pool_(pool) { ++pool_.looking_; }
  ~Looking() { --pool_.looking_; }
  Looking(const Looking&) = delete;
  Looking& operator=(const Looking&) = delete;

 private:
  State& pool_;
};

/** Takes a thread out of the pool when it ends, also when somebody ends it in the middle. */
class ServiceThreadPool::State::Leaving {
 public:
  Leaving(State& pool, const Worker& worker) : pool_(pool), worker_(worker) {}
  ~Leaving() {
    Workers earlier;
    std::unique_lock lock(pool_.mutex_);
    earlier.swap(pool_.ended_);
    lock.unlock();
    // So that at most one thread that has ended is kept, however many were needed once.
    for (const auto& ended : earlier) {
      ended->waitForThreadCompletion();
    }
    lock.lock();
    const auto self = std::find_if(pool_.workers_.begin(), pool_.workers_.end(),
                                   [this](const auto& known) { return known.get() == &worker_; });
    pool_.ended_.splice(pool_.ended_.end(), pool_.workers_, self);
    pool_.wakeAll();
    pool_.workerEnded_.notify_all();
  }
  Leaving(const Leaving&) = delete;
  Leaving& operator=(const Leaving&) = delete;

 private:
  State& pool_;
  const Worker& worker_;
};

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

ServiceThreadPool::State::State(unsigned size, InvokeInterceptorDispatcher* forOthers)
    : dispatcher(forOthers), size_(size) {}

ServiceThreadPool::State::~State() = default;

bool ServiceThreadPool::State::execute(std::function<void()> task) {
  std::unique_lock lock(mutex_);
  if (ending_) {
    return false;
  }
  const std::uint64_t number = ++lastTask_;
  tasks_.push_back({number, std::move(task)});
  if (!needsThread()) {
    const std::shared_ptr<zerva::Parker> sleeper = mayStart() ? takeSleeper() : nullptr;
    lock.unlock();
    if (sleeper != nullptr) {
      sleeper->unpark();
    }
    return true;
  }
  // Without a new thread the task starts when one of those that look for tasks is free. Threads
  // that are only being made do not count: they may fail as this one did.
  if (addThread(lock) || workers_.size() > starting_) {
    return true;
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
  } else if (const auto sleeper = mayStart() ? takeSleeper() : nullptr; sleeper != nullptr) {
    lock.unlock();
    sleeper->unpark();
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
  bool started = false;
  // A worker that is counted and has no thread would be waited for at the end.
  zerva::exceptionOf([&] {
    unsigned long threadId = 0;
    const zerva::TraceWorkScope nobody{{}};
    started = Threader().spawn(&threadId, added->get(), "pool", THREAD_PRIORITY_NORMAL, 0);
  });
  lock.lock();
  if (!started) {
    --starting_;
    workers_.erase(added);
    wakeAll();
    workerEnded_.notify_all();
  }
  return started;
}

/** @returns who slept last of those that look for a task, whose memory is the warmest; or null. */
std::shared_ptr<zerva::Parker> ServiceThreadPool::State::takeSleeper() {
  if (sleepers_.empty()) return nullptr;
  const std::shared_ptr<zerva::Parker> last = std::move(sleepers_.back());
  sleepers_.pop_back();
  return last;
}

void ServiceThreadPool::State::wakeAll() {
  for (const auto& sleeper : sleepers_) {
    sleeper->unpark();
  }
}

/** Waits until there is a task, or the thread is not needed any more; counted meanwhile. */
void ServiceThreadPool::State::awaitTask(std::unique_lock<std::mutex>& lock) {
  // However it ends, also for want of memory: one that is counted is relied on.
  const Looking looking(*this);
  while (!mayStart() && !ending_ && !tooMany()) {
    const std::shared_ptr<zerva::Parker>& parker = zerva::Parker::ofThisThread();
    sleepers_.push_back(parker);
    lock.unlock();
    parker->park();
    lock.lock();
    // It is there no more when a sleeper was wanted.
    sleepers_.erase(std::remove(sleepers_.begin(), sleepers_.end(), parker), sleepers_.end());
  }
}

void ServiceThreadPool::State::work(Worker& worker) {
  zerva::servingThread().place = this;
  const Leaving leaving(*this, worker);
  std::unique_lock lock(mutex_);
  --starting_;
  for (;;) {
    awaitTask(lock);
    if (!mayStart()) {
      return;
    }
    const std::function<void()> task = std::move(tasks_.front().run);
    tasks_.pop_front();
    const Running running(*this, lock);
    task();
  }
}

void ServiceThreadPool::State::end() {
  std::unique_lock lock(mutex_);
  ending_ = true;
  wakeAll();
  workerEnded_.wait(lock, [this] { return workers_.empty(); });
  Workers ended;
  ended.swap(ended_);
  lock.unlock();
  for (const auto& worker : ended) {
    worker->waitForThreadCompletion();
  }
}
