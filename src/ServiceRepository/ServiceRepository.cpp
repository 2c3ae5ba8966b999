#include "ServiceRepository.h"

#include <utility>
#include <vector>

#include "framework/ClientUtils.h"
#include "src/ServiceRepository/SemaphoreHolder.h"

ServiceRepository::ServiceRepository()
    : svcMapSem(1, 1, false), proxyMapSem(1, 1, false), invokerMapSem(1, 1, false) {}

// The members go in the reverse order of their declaration: the semaphores, then the maps. What the
// entries point to stays; the configurator decides about that.
ServiceRepository::~ServiceRepository() = default;

void ServiceRepository::addService(Service* service, Dll* dll, std::string interfaces) {
  const std::vector<std::string> names =
      ClientUtils::tokenizeString(std::move(interfaces), " ", true, false);
  const zerva::SemaphoreHolder holder(svcMapSem);
  for (const std::string& name : names) {
    if (!name.empty()) {
      svcMap.insert({name, SvcData{service, nullptr, nullptr, dll}});
    }
  }
}

void ServiceRepository::addService(Service* service, ServiceExecutor* executor,
                                   CommsChannelIfc* channel, Dll* dll, std::string interfaces) {
  const std::vector<std::string> names =
      ClientUtils::tokenizeString(std::move(interfaces), " ", true, false);
  const zerva::SemaphoreHolder holder(svcMapSem);
  for (const std::string& name : names) {
    if (!name.empty()) {
      svcMap.insert({name, SvcData{service, executor, channel, dll}});
    }
  }
}

void ServiceRepository::addServiceProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel,
                                        ProxyRequest* request, std::string& interfaceName) {
  const zerva::SemaphoreHolder holder(proxyMapSem);
  proxyMap.insert({interfaceName, SvcProxyData{proxy, dll, request, channel}});
}

void ServiceRepository::addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                                          std::string& protocol) {
  const std::string key = interfaceName + "," + protocol;
  const zerva::SemaphoreHolder holder(invokerMapSem);
  invokerMap.insert({key, SvcInvokerData{invoker, dll}});
}
