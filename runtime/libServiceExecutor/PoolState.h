#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <set>

#include "framework/ServiceThreadPool.h"
#include "framework/Threadable.h"
#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "runtime/libServiceExecutor/RunningTasks.h"
#include "runtime/libServiceExecutor/StartLimit.h"

/**
 * The pool's threads and what they have to do. A task starts at once as long as fewer tasks run
 * than there are processors; beyond that a thread more would only take the processor away from
 * those that come to the task anyway, and from the one that sends. What no processor is free for is
 * watched: one of the threads that have nothing to do looks every now and then whether those that
 * run get on with it. Those that do not, since they sleep or take long, count no more.
 *
 * Threads are made when one is needed and nobody is free; those that are too many, since others
 * came back from waiting, end when they have nothing to do.
 */
struct ServiceThreadPool::State final {
 public:
  State(unsigned size, InvokeInterceptorDispatcher* forOthers);
  ~State();

  bool execute(std::function<void()> task);

  /** Lets the tasks end, then the threads. */
  void end();

  InvokeInterceptorDispatcher* const dispatcher;

  std::mutex executorsMutex;
  std::set<ServiceExecutor*> executors;  // guarded by executorsMutex

 private:
  class Worker : public Threadable, public zerva::RunningPlace {
   public:
    explicit Worker(ServiceThreadPool::State& pool) : pool_(pool) {}
    void run() override { pool_.work(*this); }
    void leave() override { pool_.leave(*this); }
    void comeBack() override { pool_.comeBack(*this); }

    zerva::RunningTasks::Round begun = 0;  // of its task; guarded by the pool's mutex

   private:
    ServiceThreadPool::State& pool_;
  };
  using Workers = std::list<std::unique_ptr<Worker>>;

  class Leaving;
  class Running;
  class Sleeper;

  struct Task {
    std::uint64_t number;
    std::function<void()> run;
  };

  void work(Worker& worker);
  void leave(const Worker& worker);
  void comeBack(Worker& worker);
  bool awaitTask(std::unique_lock<std::mutex>& lock);
  void watch(std::unique_lock<std::mutex>& lock, Sleeper& watcher);
  std::size_t room() const;
  bool mayTake() const;
  bool needsWatch() const;
  bool needsThread() const;
  bool tooMany() const { return workers_.size() - waiting_ > size_; }
  std::function<void()> take();
  bool callThreads(std::unique_lock<std::mutex>& lock);
  void callMore(std::unique_lock<std::mutex>& lock);
  bool addThread(std::unique_lock<std::mutex>& lock);
  static void waitFor(const Workers& ended);

  const unsigned size_;

  std::mutex mutex_;
  std::condition_variable workerEnded_;
  // Guarded by mutex_.
  Sleeper* sleepers_ = nullptr;  // threads that have nothing to do, the last one first
  Sleeper* watcher_ = nullptr;   // the one that looks now and then
  std::deque<Task> tasks_;
  std::uint64_t lastTask_ = 0;
  Workers workers_;
  Workers ended_;
  std::size_t called_ = 0;       // sleepers that were woken and do not look for a task yet
  std::size_t starting_ = 0;     // threads that were made and do not look for a task yet
  zerva::RunningTasks running_;  // tasks that run and do not wait
  std::size_t waiting_ = 0;      // tasks that wait
  zerva::StartLimit young_;      // how many tasks may run that are not old
  bool ending_ = false;
};
