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
  state_->interceptors.forEach([&](InvokeInterceptor& each) { each.invoked(invocation); });
}

bool InvokeInterceptorDispatcher::hasInterceptors() const {
  return !state_->interceptors.isEmpty();
}
