#include "host/ObservingRepository.h"

#include "host/RepositoryObserver.h"

namespace zerva {

ObservingRepository::ObservingRepository(AbstractServiceRepository& repository,
                                         RepositoryObserver& observer)
    : repository_(repository), observer_(observer) {}

void ObservingRepository::addService(Service* service, Dll* dll, std::string interfaces) {
  repository_.addService(service, dll, interfaces);
  observer_.serviceAdded(service, nullptr, interfaces);
}

void ObservingRepository::addService(Service* service, ServiceExecutor* executor,
                                     CommsChannelIfc* channel, Dll* dll, std::string interfaces) {
  repository_.addService(service, executor, channel, dll, interfaces);
  observer_.serviceAdded(service, channel, interfaces);
}

void ObservingRepository::addServiceProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel,
                                          ProxyRequest* request, std::string& interfaceName) {
  repository_.addServiceProxy(proxy, dll, channel, request, interfaceName);
}

void ObservingRepository::addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                                            std::string& protocol) {
  repository_.addServiceInvoker(invoker, dll, interfaceName, protocol);
}

Service* ObservingRepository::findService(std::string& interfaceName,
                                          const std::string& channelName) {
  return repository_.findService(interfaceName, channelName);
}

Proxy* ObservingRepository::findServiceProxy(std::string& interfaceName) {
  return repository_.findServiceProxy(interfaceName);
}

Proxy* ObservingRepository::findServiceProxy(std::string& interfaceName, std::string& svcChannel,
                                             std::string& qualifier) {
  return repository_.findServiceProxy(interfaceName, svcChannel, qualifier);
}

Invoker* ObservingRepository::findServiceInvoker(std::string& interfaceName,
                                                 std::string& protocol) {
  return repository_.findServiceInvoker(interfaceName, protocol);
}

std::string ObservingRepository::findSvcChannel(Service* service) {
  return repository_.findSvcChannel(service);
}

bool ObservingRepository::containsService(Service* service) {
  return repository_.containsService(service);
}

SvcData* ObservingRepository::getServiceData(Service* service) {
  return repository_.getServiceData(service);
}

void ObservingRepository::shutdownAllServices() {
  repository_.shutdownAllServices();
  observer_.stopped();
}

void ObservingRepository::deleteAllServices() {
  repository_.deleteAllServices();
  observer_.deleted();
}

void ObservingRepository::deleteAllServiceInvokers() { repository_.deleteAllServiceInvokers(); }

void ObservingRepository::deleteAllServiceProxies() { repository_.deleteAllServiceProxies(); }

void ObservingRepository::deleteOneServiceProxy(Proxy* proxy, std::string& interfaceName) {
  repository_.deleteOneServiceProxy(proxy, interfaceName);
}

}  // namespace zerva
