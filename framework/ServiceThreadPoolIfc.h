#pragma once

#include <functional>

#include "framework/Export.h"

class ServiceExecutor;

/**
 * The pool as the executors see it. Any thread may call any operation.
 */
class ZERVA_EXPORT ServiceThreadPoolIfc {
 public:
  /**
   * Runs a task on a thread of the pool. Tasks start in the order in which they were handed in, as
   * soon as fewer tasks than the pool's size are running; a task that waits for a reply does not
   * count. Where no processor is free for it, a task may be kept for some 100 us first, in which
   * one that runs may end. Does not wait for the task.
   *
   * @param task run once; it throws nothing.
   * @returns false when the pool is being deleted or cannot make the one thread it needs: the task
   *     is then not run.
   */
  virtual bool execute(std::function<void()> task) = 0;

  /** An executor tells the pool that it exists. */
  virtual void add(ServiceExecutor* executor) = 0;

  /** An executor tells the pool that it is being deleted. */
  virtual void remove(ServiceExecutor* executor) = 0;

 protected:
  ~ServiceThreadPoolIfc() = default;
};
