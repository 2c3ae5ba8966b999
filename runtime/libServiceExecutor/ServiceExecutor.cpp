#include "framework/ServiceExecutor.h"

#include <utility>

#include "framework/CommsChannel.h"
#include "framework/ServiceThreadPoolIfc.h"
#include "runtime/libClientUtils/ChannelState.h"
#include "runtime/libClientUtils/Waiting.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"
#include "runtime/libServiceExecutor/ExecutorCore.h"
#include "runtime/libServiceExecutor/LiveExecutors.h"

using zerva::ExecutorCore;
using zerva::ExecutorSettings;
using zerva::LiveExecutors;

struct ServiceExecutor::State {
  explicit State(ExecutorSettings settings)
      : channel(settings.channel),
        pool(settings.pool),
        core(std::make_shared<ExecutorCore>(std::move(settings))) {}

  const std::unique_ptr<CommsChannelIfc> channel;  // ours from construction on
  ServiceThreadPoolIfc* const pool;
  const std::shared_ptr<ExecutorCore> core;
};

ServiceExecutor::ServiceExecutor(Executable* service, CommsChannelIfc* channel, std::string ifc,
                                 FrameworkContext* context, ServiceThreadPoolIfc* pool,
                                 InvokeInterceptorDispatcher* dispatcher, bool multiThreaded)
    : state_(std::make_unique<State>(ExecutorSettings{this,
                                                      service,
                                                      false,
                                                      {},
                                                      {},
                                                      std::move(ifc),
                                                      channel,
                                                      context,
                                                      pool,
                                                      dispatcher,
                                                      multiThreaded})) {
  serve();
}

ServiceExecutor::ServiceExecutor(std::string lib, std::string creator, std::string ifc,
                                 CommsChannelIfc* channel, FrameworkContext* context,
                                 ServiceThreadPoolIfc* pool,
                                 InvokeInterceptorDispatcher* dispatcher, bool multiThreaded)
    : state_(std::make_unique<State>(ExecutorSettings{this, nullptr, true, std::move(lib),
                                                      std::move(creator), std::move(ifc), channel,
                                                      context, pool, dispatcher, multiThreaded})) {
  serve();
}

void ServiceExecutor::serve() {
  try {
    LiveExecutors::add(this, state_->core);
    state_->pool->add(this);
    if (auto* const channel = dynamic_cast<CommsChannel*>(state_->channel.get())) {
      channel->state().mailbox->serveWith(state_->core);
    }
  } catch (...) {
    // It is not made, so nobody will delete it, and nobody is to find it.
    state_->core->shutdown();
    state_->pool->remove(this);
    LiveExecutors::remove(this);
    throw;
  }
}

ServiceExecutor::~ServiceExecutor() {
  ExecutorCore& core = *state_->core;
  const std::int64_t begin = zerva::Trace::begin();
  core.shutdown();
  if (!core.isIdle()) {
    const zerva::Waiting waiting("requests under way in " + core.description());
    core.waitUntilIdle();
  }
  core.waitForThread();
  state_->pool->remove(this);
  LiveExecutors::remove(this);
  if (zerva::Trace::on()) {
    zerva::TraceEvent(zerva::TraceKind::ExecutorDeleted)
        .forService(core.channelName())
        .since(begin)
        .with(zerva::TraceKey::Channel, core.channelName())
        .write();
  }
}

void ServiceExecutor::startThread(Threader& threader, unsigned long& threadId) {
  state_->core->start(threader, threadId);
}

void ServiceExecutor::initService() {
  // Held here too: a shutdown may let this executor be deleted while this thread wakes up.
  const std::shared_ptr<ExecutorCore> core = state_->core;
  core->awaitService();
}

void ServiceExecutor::shutdown() {
  // What it tells of the executor may be wanted when the executor is gone.
  zerva::Waiting::noteShutdown([core = state_->core] { return core->description(); });
  state_->core->shutdown();
}
