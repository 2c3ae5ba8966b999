#include "framework/ServiceThreadPool.h"

#include <utility>
#include <vector>

#include "framework/InvokeInterceptorDispatcher.h"
#include "framework/ServiceExecutor.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/PlatformInternal.h"
#include "tests/fakes/Recording.h"

using zerva::fakes::Nested;
using zerva::fakes::Objects;

struct ServiceThreadPool::State {
  InvokeInterceptorDispatcher* dispatcher;
  std::vector<ServiceExecutor*> executors;
};

ServiceThreadPool::ServiceThreadPool(int size, InvokeInterceptorDispatcher* dispatcher)
    : state_(new State{dispatcher, {}}) {
  const std::string name = zerva::fakes::constructed(
      this, "ServiceThreadPool", {std::to_string(size), Objects::name(dispatcher)});
  Objects::alias(static_cast<ServiceThreadPoolIfc*>(this), this);
}

ServiceThreadPool::~ServiceThreadPool() {
  if (!Objects::died(this)) return;
  const Nested nested;
  while (!state_->executors.empty()) {
    ServiceExecutor* executor = state_->executors.back();
    executor->shutdown();
    delete executor;
  }
  state_.reset();
}

bool ServiceThreadPool::execute(std::function<void()> task) {
  zerva::fakes::called(this, "execute", {});
  auto waiting = std::make_shared<std::function<void()>>(std::move(task));
  zerva::fakes::Turn::whenSettled(this, [waiting] {
    if (!*waiting) return false;
    const Nested nested;
    std::exchange(*waiting, nullptr)();
    return true;
  });
  return true;
}

void ServiceThreadPool::add(ServiceExecutor* executor) { state_->executors.push_back(executor); }

void ServiceThreadPool::remove(ServiceExecutor* executor) {
  std::erase(state_->executors, executor);
}

InvokeInterceptorDispatcher* ServiceThreadPool::dispatcher() const { return state_->dispatcher; }
