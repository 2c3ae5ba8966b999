#pragma once

#include <string>

#include "AbstractServiceRepository.h"

namespace zerva::fakes {

/**
 * Records what is asked of a repository and hands it on to another one, which is not owned. In the
 * trace it is "repository"; what the other one does is nested.
 */
class RecordingRepository : public AbstractServiceRepository {
 public:
  explicit RecordingRepository(AbstractServiceRepository& inner);

  void addService(Service* service, Dll* dll, std::string interfaces) override;
  void addService(Service* service, ServiceExecutor* executor, CommsChannelIfc* channel, Dll* dll,
                  std::string interfaces) override;
  void addServiceProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel, ProxyRequest* request,
                       std::string& interfaceName) override;
  void addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                         std::string& protocol) override;
  Service* findService(std::string& interfaceName, const std::string& channelName) override;
  Proxy* findServiceProxy(std::string& interfaceName) override;
  Proxy* findServiceProxy(std::string& interfaceName, std::string& svcChannel,
                          std::string& qualifier) override;
  Invoker* findServiceInvoker(std::string& interfaceName, std::string& protocol) override;
  std::string findSvcChannel(Service* service) override;
  bool containsService(Service* service) override;
  SvcData* getServiceData(Service* service) override;
  void shutdownAllServices() override;
  void deleteAllServices() override;
  void deleteAllServiceInvokers() override;
  void deleteAllServiceProxies() override;
  void deleteOneServiceProxy(Proxy* proxy, std::string& interfaceName) override;

 private:
  AbstractServiceRepository& inner_;
};

}  // namespace zerva::fakes
