#pragma once

#include <functional>
#include <memory>

#include "framework/Export.h"
#include "framework/ServiceThreadPoolIfc.h"

class InvokeInterceptorDispatcher;

/**
 * The threads that serve multi-threaded services. The pool grows on demand up to its size.
 */
class ZERVA_EXPORT ServiceThreadPool : public ServiceThreadPoolIfc {
 public:
  /**
   * @param size how many requests may be started at a time; at least 1. No thread is made yet.
   * @param dispatcher kept for whoever asks the pool for it; not owned; may be null.
   */
  ServiceThreadPool(int size, InvokeInterceptorDispatcher* dispatcher);

  /**
   * Stops and deletes every executor that was made with the pool and that nobody has deleted, then
   * waits for running tasks and ends the threads. Not called on a thread of the pool.
   */
  virtual ~ServiceThreadPool();
  ServiceThreadPool(const ServiceThreadPool&) = delete;
  ServiceThreadPool& operator=(const ServiceThreadPool&) = delete;

  bool execute(std::function<void()> task) override;
  void add(ServiceExecutor* executor) override;
  void remove(ServiceExecutor* executor) override;

  /** @returns the dispatcher that the pool was made with. */
  InvokeInterceptorDispatcher* dispatcher() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
