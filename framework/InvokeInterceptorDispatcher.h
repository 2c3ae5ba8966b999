#pragma once

#include <memory>

#include "framework/Export.h"
#include "framework/InvokeInterceptor.h"

/**
 * Hands what the executors report to the interceptors that were added, in the order in which they
 * were added. The host owns it; it outlives every executor made with it. Any thread may call any
 * operation.
 */
class ZERVA_EXPORT InvokeInterceptorDispatcher {
 public:
  /** Without interceptors. */
  InvokeInterceptorDispatcher();
  virtual ~InvokeInterceptorDispatcher();
  InvokeInterceptorDispatcher(const InvokeInterceptorDispatcher&) = delete;
  InvokeInterceptorDispatcher& operator=(const InvokeInterceptorDispatcher&) = delete;

  /**
   * Adds an interceptor.
   *
   * @param interceptor not owned; lives until it was removed and no call of it is under way, or
   *     longer than the dispatcher.
   */
  virtual void addInterceptor(InvokeInterceptor* interceptor);

  /** Removes an interceptor. Calls under way on other threads may still finish afterwards. */
  virtual void removeInterceptor(InvokeInterceptor* interceptor);

  /** An executor reports an invocation. */
  virtual void dispatch(const Invocation& invocation);

  /**
   * @returns whether there are any. As long as there are none an executor reports nothing, so
   * whoever overrides the report overrides this too; it is asked under locks and must not call
   * back.
   */
  virtual bool hasInterceptors() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
