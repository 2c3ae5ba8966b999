#include "framework/CCInterceptorDispatcher.h"

#include <vector>

#include "tests/fakes/Objects.h"
#include "tests/fakes/Recording.h"

struct CCInterceptorDispatcher::State {
  std::vector<CCInterceptor*> interceptors;
};

CCInterceptorDispatcher::CCInterceptorDispatcher() : state_(new State()) {
  zerva::fakes::constructed(this, "CCInterceptorDispatcher", {});
}

CCInterceptorDispatcher::~CCInterceptorDispatcher() {
  if (zerva::fakes::Objects::died(this)) state_.reset();
}

void CCInterceptorDispatcher::addInterceptor(CCInterceptor* interceptor) {
  state_->interceptors.push_back(interceptor);
}

void CCInterceptorDispatcher::removeInterceptor(CCInterceptor* interceptor) {
  std::erase(state_->interceptors, interceptor);
}

void CCInterceptorDispatcher::dispatchSent(const InterceptedMessage& message) {
  for (CCInterceptor* interceptor : state_->interceptors) interceptor->messageSent(message);
}

void CCInterceptorDispatcher::dispatchReceived(const InterceptedMessage& message) {
  for (CCInterceptor* interceptor : state_->interceptors) interceptor->messageReceived(message);
}

bool CCInterceptorDispatcher::hasInterceptors() const { return !state_->interceptors.empty(); }
