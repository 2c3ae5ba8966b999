#pragma once

#include <memory>

#include "framework/CCInterceptor.h"
#include "framework/Export.h"

/**
 * Hands what the channels report to the interceptors that were added, in the order in which they
 * were added. The host owns it; it outlives every channel made with it. Any thread may call any
 * operation.
 */
class ZERVA_EXPORT CCInterceptorDispatcher {
 public:
  /** Without interceptors. */
  CCInterceptorDispatcher();
  virtual ~CCInterceptorDispatcher();
  CCInterceptorDispatcher(const CCInterceptorDispatcher&) = delete;
  CCInterceptorDispatcher& operator=(const CCInterceptorDispatcher&) = delete;

  /**
   * Adds an interceptor.
   *
   * @param interceptor not owned; lives until it was removed and no call of it is under way, or
   *     longer than the dispatcher.
   */
  virtual void addInterceptor(CCInterceptor* interceptor);

  /** Removes an interceptor. Calls under way on other threads may still finish afterwards. */
  virtual void removeInterceptor(CCInterceptor* interceptor);

  /** A channel reports that it sent a message. */
  virtual void dispatchSent(const InterceptedMessage& message);

  /** A channel reports that a message reached its receiver. */
  virtual void dispatchReceived(const InterceptedMessage& message);

  /**
   * @returns whether there are any. As long as there are none a channel reports nothing, so whoever
   *     overrides the report overrides this too; it is asked under locks and must not call back.
   */
  virtual bool hasInterceptors() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
