#pragma once

#include <map>
#include <string>

#include "AbstractServiceRepository.h"
#include "SvcData.h"
#include "SvcInvokerData.h"
#include "SvcProxyData.h"
#include "framework/Export.h"
#include "framework/Semaphore.h"

/**
 * The repository that a host normally hands to its configurator: three maps, each guarded by a
 * semaphore of its own. Entries that share a key stay in the order in which they were added, and
 * lookups take the first.
 *
 * Each operation holds the semaphore of its map while it runs, the deletions too; objects that are
 * deleted, and threads that are waited for, must not come back into the same map.
 */
class ZERVA_EXPORT ServiceRepository : public AbstractServiceRepository {
 public:
  /** An empty repository. Cannot fail. */
  ServiceRepository();

  /** Frees the entries and none of the objects that they point to. */
  ~ServiceRepository() override;
  ServiceRepository(const ServiceRepository&) = delete;
  ServiceRepository& operator=(const ServiceRepository&) = delete;

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

 protected:
  /** By interface name; guarded by `svcMapSem`. */
  std::multimap<std::string, SvcData> svcMap;
  /** By interface name; guarded by `proxyMapSem`. */
  std::multimap<std::string, SvcProxyData> proxyMap;
  /** By interface, comma, protocol; guarded by `invokerMapSem`. */
  std::multimap<std::string, SvcInvokerData> invokerMap;
  Semaphore svcMapSem;
  Semaphore proxyMapSem;
  Semaphore invokerMapSem;
};
