#include "framework/ServiceExecutor.h"

#include <chrono>
#include <exception>

#include "FrameworkContext.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "framework/Service.h"
#include "framework/ServiceThreadPoolIfc.h"
#include "framework/Threader.h"
#include "tests/fakes/ChannelState.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/PlatformInternal.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::called;
using zerva::fakes::inQuotes;
using zerva::fakes::Nested;
using zerva::fakes::Objects;
using zerva::fakes::Turn;

struct ServiceExecutor::State {
  ServiceExecutor* executor;
  Executable* service;
  std::string lib;
  std::string creator;
  std::string ifc;
  CommsChannelIfc* channel;
  FrameworkContext* context;
  ServiceThreadPoolIfc* pool;
  InvokeInterceptorDispatcher* dispatcher;
  bool multiThreaded;
  bool lazy;
  bool started = false;
  bool down = false;
  bool creating = false;
  /** Why the service can never be made. */
  std::string finalError{};

  CommsChannel::State* mailbox() const {
    auto* own = dynamic_cast<CommsChannel*>(channel);
    return own == nullptr ? nullptr : &own->state();
  }

  void open() {
    if (pool != nullptr) pool->add(executor);
    if (auto* box = mailbox()) box->serve();
  }

  /** Makes a lazy service. @returns why there is none; empty when there is one. */
  std::string make() {
    if (service != nullptr) return {};
    if (!finalError.empty()) return finalError;
    if (creating) return "the service is being created";
    creating = true;
    try {
      service = context->initialiseService(executor, lib, creator, channel, ifc);
    } catch (const std::exception& exception) {
      finalError = exception.what();
    } catch (...) {
      finalError = "unknown exception";
    }
    creating = false;
    if (!finalError.empty()) return finalError;
    return service == nullptr ? "the service could not be created" : "";
  }

  std::string handle(const Waiting& request, std::string& reply) {
    const std::string error = make();
    if (!error.empty()) return error;
    CommsChannelDataContainerMessage message;
    CommsChannelDataContainerMessage answer;
    message.setChannel(request.from);
    message.setData(request.data);
    message.setRequestId(static_cast<long>(request.requestId));
    try {
      service->messageReceived(message, answer);
    } catch (const std::exception& exception) {
      return exception.what();
    } catch (...) {
      return "unknown exception";
    }
    reply = answer.getData();
    return {};
  }

  /** Serves one request. @returns whether there was one. */
  bool serveOne() {
    CommsChannel::State* box = mailbox();
    if (!started || down || box == nullptr || box->requests.empty()) return false;
    const Nested nested;
    const Waiting request = box->requests.front();
    box->requests.pop_front();
    std::string reply;
    const std::string error = handle(request, reply);
    CommsChannel::State::finish(request, reply, error);
    if (dispatcher != nullptr) {
      const std::string method;
      dispatcher->dispatch(
          Invocation{ifc, method, request.from, box->name, std::chrono::nanoseconds(0), error});
    }
    return true;
  }

  void end() {
    down = true;
    if (auto* box = mailbox()) box->close();
  }
};

ServiceExecutor::ServiceExecutor(Executable* service, CommsChannelIfc* channel, std::string ifc,
                                 FrameworkContext* context, ServiceThreadPoolIfc* pool,
                                 InvokeInterceptorDispatcher* dispatcher, bool multiThreaded)
    : state_(new State{
          this, service, {}, {}, ifc, channel, context, pool, dispatcher, multiThreaded, false}) {
  zerva::fakes::constructed(
      this, "ServiceExecutor",
      {Objects::name(service), Objects::name(channel), inQuotes(ifc), Objects::name(context),
       Objects::name(pool), Objects::name(dispatcher), multiThreaded ? "true" : "false"});
  state_->open();
}

ServiceExecutor::ServiceExecutor(std::string lib, std::string creator, std::string ifc,
                                 CommsChannelIfc* channel, FrameworkContext* context,
                                 ServiceThreadPoolIfc* pool,
                                 InvokeInterceptorDispatcher* dispatcher, bool multiThreaded)
    : state_(new State{this, nullptr, lib, creator, ifc, channel, context, pool, dispatcher,
                       multiThreaded, true}) {
  zerva::fakes::constructed(this, "ServiceExecutor",
                            {inQuotes(lib), inQuotes(creator), inQuotes(ifc),
                             Objects::name(channel), Objects::name(context), Objects::name(pool),
                             Objects::name(dispatcher), multiThreaded ? "true" : "false"});
  state_->open();
}

ServiceExecutor::~ServiceExecutor() {
  if (!Objects::died(this)) return;
  const Nested nested;
  Turn::cancel(this);
  state_->end();
  if (state_->pool != nullptr) state_->pool->remove(this);
  delete state_->channel;
  state_.reset();
}

void ServiceExecutor::startThread(Threader& threader, unsigned long& threadId) {
  constexpr unsigned long kThread = 816;
  called(this, "startThread", {Objects::name(&threader)});
  state_->started = true;
  threadId = state_->multiThreaded && !state_->lazy ? 0 : kThread;
  Turn::whenSettled(this, [state = state_.get()] { return state->serveOne(); });
}

void ServiceExecutor::initService() {
  called(this, "initService", {});
  const Nested nested;
  if (state_->started && !state_->down) state_->make();
}

void ServiceExecutor::shutdown() {
  called(this, "shutdown", {});
  state_->end();
}
