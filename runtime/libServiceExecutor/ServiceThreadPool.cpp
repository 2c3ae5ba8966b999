#include "framework/ServiceThreadPool.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "framework/ServiceExecutor.h"
#include "framework/Threader.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/Processors.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"
#include "runtime/libServiceExecutor/PoolState.h"
#include "runtime/libServiceExecutor/UnrecordedServices.h"

namespace {

// A task that nobody starts meanwhile is looked after; about what it takes to wake a thread.
constexpr std::chrono::microseconds kPatience{50};

// How many threads that are free are woken by one that looks after them.
constexpr std::size_t kMostCalled = 8;

}  // namespace

/** While it lives, a task runs. Made under the lock, which it has again afterwards. */
class ServiceThreadPool::State::Running {
 public:
  Running(State& pool, Worker& worker, std::unique_lock<std::mutex>& lock)
      : pool_(pool), worker_(worker), lock_(lock) {
    worker_.begun = pool_.running_.begin();
  }
  ~Running() {
    if (!lock_.owns_lock()) lock_.lock();
    pool_.running_.end(worker_.begun);
    // This thread looks for a task next; others are for those that come in the meantime.
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  State& pool_;
  Worker& worker_;
  std::unique_lock<std::mutex>& lock_;
};

/** A thread that has nothing to do. Made and destroyed under the lock; it takes no memory. */
class ServiceThreadPool::State::Sleeper {
 public:
  explicit Sleeper(State& pool) : pool_(pool), parker_(zerva::Parker::ofThisThread()) {}
  ~Sleeper() { getUp(); }
  Sleeper(const Sleeper&) = delete;
  Sleeper& operator=(const Sleeper&) = delete;

  const std::shared_ptr<zerva::Parker>& parker() const { return parker_; }

  /** Sleeps until it is called, or without a reason. */
  void sleep(std::unique_lock<std::mutex>& lock) {
    next_ = pool_.sleepers_;
    pool_.sleepers_ = this;
    listed_ = true;
    lock.unlock();
    parker_->park();
    lock.lock();
    getUp();
  }

  /** As above, and not longer than that. @returns whether the time is over. */
  bool watch(std::unique_lock<std::mutex>& lock, zerva::Clock::time_point until) {
    pool_.watcher_ = this;
    listed_ = true;
    lock.unlock();
    const bool over = !parker_->park(until);
    lock.lock();
    getUp();
    return over;
  }

  /** Takes the one that slept last, whose memory is the warmest; the one that watches if need be.
   */
  static Sleeper* callOne(State& pool) {
    Sleeper*& first = pool.sleepers_ != nullptr ? pool.sleepers_ : pool.watcher_;
    Sleeper* const called = first;
    if (called != nullptr) {
      first = called->next_;
      called->listed_ = false;
      called->called_ = true;
      ++pool.called_;
    }
    return called;
  }

  static void wakeAll(const State& pool) {
    for (const Sleeper* one = pool.sleepers_; one != nullptr; one = one->next_) {
      one->parker_->unpark();
    }
    if (pool.watcher_ != nullptr) pool.watcher_->parker_->unpark();
  }

 private:
  /** Is no sleeper any more, however that came. */
  void getUp() {
    if (std::exchange(called_, false)) --pool_.called_;
    if (std::exchange(listed_, false)) {
      Sleeper** place = pool_.watcher_ == this ? &pool_.watcher_ : &pool_.sleepers_;
      while (*place != this) place = &(*place)->next_;
      *place = next_;
    }
    next_ = nullptr;
  }

  State& pool_;
  const std::shared_ptr<zerva::Parker>& parker_;
  Sleeper* next_ = nullptr;
  bool listed_ = false;
  bool called_ = false;
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
    waitFor(earlier);
    lock.lock();
    const auto self = std::find_if(pool_.workers_.begin(), pool_.workers_.end(),
                                   [this](const auto& known) { return known.get() == &worker_; });
    pool_.ended_.splice(pool_.ended_.end(), pool_.workers_, self);
    Sleeper::wakeAll(pool_);
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
    : dispatcher(forOthers), size_(size), young_(zerva::usableProcessors(), size) {}

ServiceThreadPool::State::~State() = default;

bool ServiceThreadPool::State::execute(std::function<void()> task) {
  std::unique_lock lock(mutex_);
  if (ending_) {
    return false;
  }
  const std::uint64_t number = ++lastTask_;
  tasks_.push_back({number, std::move(task)});
  if (callThreads(lock)) {
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

void ServiceThreadPool::State::leave(const Worker& worker) {
  std::unique_lock lock(mutex_);
  running_.end(worker.begun);
  ++waiting_;
  callThreads(lock);
}

void ServiceThreadPool::State::comeBack(Worker& worker) {
  const std::lock_guard lock(mutex_);
  --waiting_;
  worker.begun = running_.begin();
}

/** @returns how many tasks may start at once, as far as they are there. */
std::size_t ServiceThreadPool::State::room() const {
  const std::size_t all = running_.count() < size_ ? size_ - running_.count() : 0;
  if (ending_) return all;
  const std::size_t limit = young_.tasks();
  return std::min(all, running_.young() < limit ? limit - running_.young() : 0);
}

bool ServiceThreadPool::State::mayTake() const { return !tasks_.empty() && room() > 0; }

/** @returns whether there are tasks that are kept waiting for want of a processor only. */
bool ServiceThreadPool::State::needsWatch() const {
  const std::size_t now = room();
  return watcher_ == nullptr && tasks_.size() > now && running_.count() + now < size_;
}

/** @returns whether one more thread is to look for a task than those that are about to. */
bool ServiceThreadPool::State::needsThread() const {
  if (tasks_.empty()) return false;
  const std::size_t now = std::min(tasks_.size(), room());
  // Threads that are only being made may fail; as long as there are no others, each task has one.
  if (starting_ == workers_.size()) return now > 0 && tasks_.size() > starting_;
  const std::size_t coming = called_ + starting_;
  return now > coming || (coming == 0 && needsWatch());
}

/**
 * Gets threads to look for a task, if some are needed: those that are free, or else a new one. The
 * lock may be released. Whoever takes a task then calls further ones.
 *
 * @returns false when nobody would start a task.
 */
bool ServiceThreadPool::State::callThreads(std::unique_lock<std::mutex>& lock) {
  if (!needsThread()) {
    return true;
  }
  if (const Sleeper* const sleeper = Sleeper::callOne(*this); sleeper != nullptr) {
    const std::shared_ptr<zerva::Parker> parker = sleeper->parker();
    if (needsThread()) {
      callMore(lock);
    } else {
      lock.unlock();
    }
    // Woken under the lock it would run into it.
    parker->unpark();
    return true;
  }
  // Without a new thread the task starts when one of those that look for tasks is free. Threads
  // that are only being made do not count: they may fail as this one did.
  return addThread(lock) || workers_.size() > starting_;
}

/** Wakes more of those that are free, and releases the lock. */
void ServiceThreadPool::State::callMore(std::unique_lock<std::mutex>& lock) {
  std::array<std::shared_ptr<zerva::Parker>, kMostCalled> called;
  std::size_t count = 0;
  while (count < called.size() && needsThread()) {
    const Sleeper* const sleeper = Sleeper::callOne(*this);
    if (sleeper == nullptr) break;
    called[count++] = sleeper->parker();
  }
  lock.unlock();
  for (std::size_t one = 0; one < count; ++one) called[one]->unpark();
}

/** Makes a thread; the lock is released while the system does. @returns whether there is one. */
bool ServiceThreadPool::State::addThread(std::unique_lock<std::mutex>& lock) {
  Workers added;
  // There may be no memory for it, which is as good as no thread.
  if (zerva::exceptionOf([&] { added.push_back(std::make_unique<Worker>(*this)); })) return false;
  Worker& worker = *added.front();
  const auto place = added.begin();
  workers_.splice(workers_.end(), added);
  ++starting_;
  Workers ended;
  ended.swap(ended_);
  lock.unlock();
  waitFor(ended);
  bool started = false;
  // A worker that is counted and has no thread would be waited for at the end.
  zerva::exceptionOf([&] {
    unsigned long threadId = 0;
    const zerva::TraceWorkScope nobody{{}};
    started = Threader().spawn(&threadId, &worker, "pool", THREAD_PRIORITY_NORMAL, 0);
  });
  lock.lock();
  if (!started) {
    --starting_;
    workers_.erase(place);
    Sleeper::wakeAll(*this);
    workerEnded_.notify_all();
  }
  return started;
}

/** Waits for a task to be started. @returns false when the thread is not needed any more. */
bool ServiceThreadPool::State::awaitTask(std::unique_lock<std::mutex>& lock) {
  if (mayTake()) return true;
  Sleeper self(*this);
  while (!ending_) {
    if (needsWatch()) {
      watch(lock, self);
    } else if (tooMany()) {
      return false;
    } else {
      self.sleep(lock);
    }
    if (mayTake()) return true;
  }
  return false;
}

/** Sees to it that a task that no processor is free for does not wait for those that do not end. */
void ServiceThreadPool::State::watch(std::unique_lock<std::mutex>& lock, Sleeper& watcher) {
  young_.setProcessors(zerva::usableProcessors());
  const bool over = watcher.watch(lock, zerva::Clock::now() + kPatience);
  if (!over || tasks_.empty()) return;
  bool stuck = running_.nextRound();
  // Where some do not get on, others are believed to be like them.
  if (young_.isRaised()) stuck = running_.nextRound() || stuck;
  young_.look(stuck, tasks_.front().number, lastTask_);
}

/** @returns the first task. */
std::function<void()> ServiceThreadPool::State::take() {
  std::function<void()> task = std::move(tasks_.front().run);
  tasks_.pop_front();
  if (tasks_.empty()) young_.reset();
  return task;
}

void ServiceThreadPool::State::work(Worker& worker) {
  zerva::servingThread().place = &worker;
  const Leaving leaving(*this, worker);
  std::unique_lock lock(mutex_);
  --starting_;
  for (;;) {
    if (!awaitTask(lock)) return;
    const Running running(*this, worker, lock);
    const std::function<void()> task = take();
    // Others are not to wait for this one.
    callThreads(lock);
    if (lock.owns_lock()) lock.unlock();
    task();
  }
}

void ServiceThreadPool::State::end() {
  std::unique_lock lock(mutex_);
  ending_ = true;
  Sleeper::wakeAll(*this);
  workerEnded_.wait(lock, [this] { return workers_.empty(); });
  Workers ended;
  ended.swap(ended_);
  lock.unlock();
  waitFor(ended);
}

/** Waits for threads that have ended; that takes no memory. */
void ServiceThreadPool::State::waitFor(const Workers& ended) {
  for (const auto& worker : ended) {
    worker->waitForThreadCompletion();
  }
}
