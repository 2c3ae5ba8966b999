#include "framework/CCInterceptorDispatcher.h"

#include "runtime/libServiceExecutor/InterceptorList.h"

struct CCInterceptorDispatcher::State {
  zerva::InterceptorList<CCInterceptor> interceptors;
};

CCInterceptorDispatcher::CCInterceptorDispatcher() : state_(std::make_unique<State>()) {}

CCInterceptorDispatcher::~CCInterceptorDispatcher() = default;

void CCInterceptorDispatcher::addInterceptor(CCInterceptor* interceptor) {
  state_->interceptors.add(interceptor);
}

void CCInterceptorDispatcher::removeInterceptor(CCInterceptor* interceptor) {
  state_->interceptors.remove(interceptor);
}

void CCInterceptorDispatcher::dispatchSent(const InterceptedMessage& message) {
  state_->interceptors.forEach([&](CCInterceptor& each) { each.messageSent(message); });
}

void CCInterceptorDispatcher::dispatchReceived(const InterceptedMessage& message) {
  state_->interceptors.forEach([&](CCInterceptor& each) { each.messageReceived(message); });
}

bool CCInterceptorDispatcher::hasInterceptors() const { return !state_->interceptors.isEmpty(); }
