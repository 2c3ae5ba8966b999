#include "host/live/StatusServing.h"

#include <unistd.h>

#include <utility>

#include "FrameworkContext.h"
#include "framework/CommsChannel.h"
#include "framework/ServiceExecutor.h"
#include "framework/ServiceThreadPool.h"
#include "framework/Threader.h"
#include "host/live/HostStatus.h"
#include "rmi/InvokerOf.h"
#include "runtime/libClientUtils/ProtocolRepository.h"

namespace zerva {
namespace {

class HostStatusInvoker final : public rmi::InvokerOf<HostStatusIfc> {
 public:
  HostStatusInvoker()
      : InvokerOf(ZERVA_METHOD(HostStatusIfc::status), ZERVA_METHOD(HostStatusIfc::calls)) {}
};

/** Knows the one invoker, and looks nothing up: the configurator may be busy, or not there. */
class StatusContext final : public FrameworkContext {
 public:
  Invoker* findInvoker(std::string& interface, std::string& /*protocol*/) override {
    return interface == HostStatusIfc::name ? &invoker_ : nullptr;
  }
  ProtocolAdapter* findProtocolAdapter(std::string& protocol) override {
    return protocols_.findProtocolAdapter(protocol);
  }
  Proxy* findProxy(std::string& /*ifc*/, std::string& /*svcChannel*/) override { return nullptr; }
  Proxy* findProxy(std::string& /*ifc*/, std::string& /*svcChannel*/,
                   std::string& /*qualifier*/) override {
    return nullptr;
  }
  std::string findChannel(Executable* /*executable*/) override { return {}; }
  Service* initialiseService(ServiceExecutor* /*executor*/, std::string /*lib*/,
                             std::string /*creator*/, CommsChannelIfc* /*channel*/,
                             std::string /*ifc*/) override {
    return nullptr;
  }
  void removeAndDeleteProxyFromRepository(Proxy* /*proxy*/, std::string& /*ifc*/) override {}
  Service* findRealService(const std::string& /*interfaceName*/,
                           const std::string& /*channelName*/) override {
    return nullptr;
  }

 private:
  HostStatusInvoker invoker_;
  ProtocolRepository protocols_;
};

}  // namespace

/** The executor goes first, since it uses all the others. */
struct StatusServing::State {
  State(const StatusBoard& board, std::function<std::string()> waitsFor)
      : service(board, std::move(waitsFor)),
        // The channel is the executor's from here on.
        executor(&service, new CommsChannel(channel(), nullptr), HostStatusIfc::name, &context,
                 &pool, nullptr, false) {}

  StatusContext context;
  ServiceThreadPool pool{1, nullptr};
  HostStatus service;
  ServiceExecutor executor;
};

StatusServing::StatusServing(const StatusBoard& board, std::function<std::string()> waitsFor)
    : state_(std::make_unique<State>(board, std::move(waitsFor))) {
  Threader threader;
  unsigned long thread = 0;
  state_->executor.startThread(threader, thread);
}

StatusServing::~StatusServing() = default;

std::string StatusServing::channel() {
  return HostStatusIfc::channelOf(static_cast<int>(getpid()));
}

}  // namespace zerva
