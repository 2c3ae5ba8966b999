#include "framework/InvokeInterceptorDispatcher.h"

#include "runtime/libServiceExecutor/InterceptorList.h"

struct InvokeInterceptorDispatcher::State {
  zerva::InterceptorList<InvokeInterceptor> interceptors;
};

InvokeInterceptorDispatcher::InvokeInterceptorDispatcher() : state_(std::make_unique<State>()) {}

InvokeInterceptorDispatcher::~InvokeInterceptorDispatcher() = default;

void InvokeInterceptorDispatcher::addInterceptor(InvokeInterceptor* interceptor) {
  state_->interceptors.add(interceptor);
}

void InvokeInterceptorDispatcher::removeInterceptor(InvokeInterceptor* interceptor) {
  state_->interceptors.remove(interceptor);
}

void InvokeInterceptorDispatcher::dispatch(const Invocation& invocation) {
  const auto all = state_->interceptors.all();
  for (InvokeInterceptor* const interceptor : *all) {
    interceptor->invoked(invocation);
  }
}

bool InvokeInterceptorDispatcher::hasInterceptors() const {
  return !state_->interceptors.isEmpty();
}
