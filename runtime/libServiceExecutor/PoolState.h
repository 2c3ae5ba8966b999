#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

#include "framework/ServiceThreadPool.h"
#include "framework/Threadable.h"
#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/ServingThread.h"

/**
 * The pool's threads and what they have to do. Threads are made when a task may start and nobody is
 * free to start it; those that are too many, since others came back from waiting, end when they
 * have nothing to do.
 */
struct ServiceThreadPool::State final : public zerva::RunningPlace {
 public:
  State(unsigned size, InvokeInterceptorDispatcher* forOthers);
  ~State();

  bool execute(std::function<void()> task);
  void leave() override;
  void comeBack() override;

  /** Lets the tasks end, then the threads. */
  void end();

  InvokeInterceptorDispatcher* const dispatcher;

  std::mutex executorsMutex;
  std::set<ServiceExecutor*> executors;  // guarded by executorsMutex

 private:
  class Worker : public Threadable {
   public:
    explicit Worker(ServiceThreadPool::State& pool) : pool_(pool) {}
    void run() override { pool_.work(*this); }

   private:
    ServiceThreadPool::State& pool_;
  };
  using Workers = std::list<std::unique_ptr<Worker>>;

  class Leaving;
  class Looking;
  class Running;

  struct Task {
    std::uint64_t number;
    std::function<void()> run;
  };

  void work(Worker& worker);
  void awaitTask(std::unique_lock<std::mutex>& lock);
  bool mayStart() const { return !tasks_.empty() && running_ < size_; }
  bool tooMany() const { return workers_.size() - waiting_ > size_; }
  bool needsThread() const { return mayStart() && tasks_.size() > looking_ + starting_; }
  std::shared_ptr<zerva::Parker> takeSleeper();
  void wakeAll();
  bool addThread(std::unique_lock<std::mutex>& lock);

  const unsigned size_;

  std::mutex mutex_;
  std::condition_variable workerEnded_;
  // Guarded by mutex_.
  std::vector<std::shared_ptr<zerva::Parker>> sleepers_;  // of those that look for a task
  std::deque<Task> tasks_;
  std::uint64_t lastTask_ = 0;
  Workers workers_;
  Workers ended_;
  std::size_t looking_ = 0;   // threads that look for a task
  std::size_t starting_ = 0;  // threads that were made and do not look yet
  std::size_t running_ = 0;   // tasks that run and do not wait
  std::size_t waiting_ = 0;   // tasks that wait
  bool ending_ = false;
};
