#include "framework/InvokeInterceptorDispatcher.h"

#include <vector>

#include "tests/fakes/Objects.h"
#include "tests/fakes/Recording.h"

struct InvokeInterceptorDispatcher::State {
  std::vector<InvokeInterceptor*> interceptors;
};

InvokeInterceptorDispatcher::InvokeInterceptorDispatcher() : state_(new State()) {
  zerva::fakes::constructed(this, "InvokeInterceptorDispatcher", {});
}

InvokeInterceptorDispatcher::~InvokeInterceptorDispatcher() {
  if (zerva::fakes::Objects::died(this)) state_.reset();
}

void InvokeInterceptorDispatcher::addInterceptor(InvokeInterceptor* interceptor) {
  state_->interceptors.push_back(interceptor);
}

void InvokeInterceptorDispatcher::removeInterceptor(InvokeInterceptor* interceptor) {
  std::erase(state_->interceptors, interceptor);
}

void InvokeInterceptorDispatcher::dispatch(const Invocation& invocation) {
  for (InvokeInterceptor* interceptor : state_->interceptors) interceptor->invoked(invocation);
}

bool InvokeInterceptorDispatcher::hasInterceptors() const { return !state_->interceptors.empty(); }
