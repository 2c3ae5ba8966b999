#include "host/ObservingRepository.h"

#include "host/RepositoryObserver.h"

namespace zerva {

ObservingRepository::ObservingRepository(AbstractServiceRepository& repository,
                                         RepositoryObserver& observer)
    : repository_(repository), observers_{&observer} {}

void ObservingRepository::addObserver(RepositoryObserver& observer) {
  observers_.push_back(&observer);
}

void ObservingRepository::addService(Service* service, Dll* dll, std::string interfaces) {
  repository_.addService(service, dll, interfaces);
  for (RepositoryObserver* observer : observers_)
    observer->serviceAdded(service, nullptr, interfaces);
}

void ObservingRepository::addService(Service* service, ServiceExecutor* executor,
                                     CommsChannelIfc* channel, Dll* dll, std::string interfaces) {
  repository_.addService(service, executor, channel, dll, interfaces);
  for (RepositoryObserver* observer : observers_)
    observer->serviceAdded(service, channel, interfaces);
}

void ObservingRepository::addServiceProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel,
                                          ProxyRequest* request, std::string& interfaceName) {
  repository_.addServiceProxy(proxy, dll, channel, request, interfaceName);
  for (RepositoryObserver* observer : observers_) {
    observer->proxyAdded(interfaceName, request, channel);
  }
}

void ObservingRepository::addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                                            std::string& protocol) {
  repository_.addServiceInvoker(invoker, dll, interfaceName, protocol);
  for (RepositoryObserver* observer : observers_) observer->invokerAdded(interfaceName, protocol);
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
  for (RepositoryObserver* observer : observers_) observer->stopped();
}

void ObservingRepository::deleteAllServices() {
  repository_.deleteAllServices();
  for (RepositoryObserver* observer : observers_) observer->deleted();
}

void ObservingRepository::deleteAllServiceInvokers() {
  repository_.deleteAllServiceInvokers();
  for (RepositoryObserver* observer : observers_) observer->invokersDeleted();
}

void ObservingRepository::deleteAllServiceProxies() {
  repository_.deleteAllServiceProxies();
  for (RepositoryObserver* observer : observers_) observer->proxiesDeleted();
}

void ObservingRepository::deleteOneServiceProxy(Proxy* proxy, std::string& interfaceName) {
  repository_.deleteOneServiceProxy(proxy, interfaceName);
}

}  // namespace zerva
