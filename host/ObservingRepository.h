#pragma once

#include <string>
#include <vector>

#include "AbstractServiceRepository.h"

namespace zerva {

class RepositoryObserver;

/**
 * Hands every operation on to another repository unchanged, and tells an observer what becomes of
 * the services.
 */
class ObservingRepository final : public AbstractServiceRepository {
 public:
  /** @param repository does the work; not owned. @param observer not owned. */
  ObservingRepository(AbstractServiceRepository& repository, RepositoryObserver& observer);

  /** Tells another one too, after those before. @param observer not owned. Before any use. */
  void addObserver(RepositoryObserver& observer);

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
  AbstractServiceRepository& repository_;
  std::vector<RepositoryObserver*> observers_;
};

}  // namespace zerva
