// The bases that services, proxies and invokers derive from. They record nothing: what happens to
// an object is recorded by its own class.

#include "framework/CommsChannelIfc.h"
#include "framework/Executable.h"
#include "framework/Invoker.h"
#include "framework/ProtocolAdapter.h"
#include "framework/Proxy.h"
#include "framework/ProxyRequest.h"
#include "framework/Service.h"

CommsChannelIfc::~CommsChannelIfc() = default;
Invoker::~Invoker() = default;
ProtocolAdapter::~ProtocolAdapter() = default;
ProxyRequest::~ProxyRequest() = default;

void Executable::stop() {}
void Executable::timerExpired(int /*timer*/) {}
void Executable::messageReceived(const CommsChannelDataContainerMessage& /*message*/,
                                 CommsChannelDataContainerMessage& /*reply*/) {}
Executable::~Executable() = default;

void Service::run() {}
Service::~Service() = default;

void Proxy::init(SvcRTEContext* /*context*/) {}
Proxy::~Proxy() = default;
