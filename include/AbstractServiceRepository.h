#pragma once

#include <string>

#include "SvcData.h"
#include "framework/Export.h"

class CommsChannelIfc;
class Dll;
class Invoker;
class Proxy;
class ProxyRequest;
class Service;
class ServiceExecutor;

/**
 * Where a configurator records everything that it creates. What is handed to an add operation
 * belongs to the repository from then on; what a lookup gives stays with the repository.
 *
 * All operations may be called from any thread. The order of the operations is part of the binary
 * interface between host and configurator.
 */
class ZERVA_EXPORT AbstractServiceRepository {
 public:
  /**
   * Records a service that runs a thread of its own, under each of its interface names.
   *
   * @param service the service.
   * @param dll the library that it comes from.
   * @param interfaces interface names separated by single blanks; none records nothing.
   */
  virtual void addService(Service* service, Dll* dll, std::string interfaces) = 0;

  /**
   * Records a service with executor and channel, under each of its interface names. Any of the
   * pointers may be null.
   */
  virtual void addService(Service* service, ServiceExecutor* executor, CommsChannelIfc* channel,
                          Dll* dll, std::string interfaces) = 0;

  /** Records a proxy with its library, private channel and request. */
  virtual void addServiceProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel,
                               ProxyRequest* request, std::string& interfaceName) = 0;

  /** Records an invoker for one interface and one protocol. */
  virtual void addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                                 std::string& protocol) = 0;

  /**
   * @param channelName the channel that the service must have; empty for any.
   * @returns the service recorded first that matches, or null.
   */
  virtual Service* findService(std::string& interfaceName, const std::string& channelName) = 0;

  /** @returns the proxy recorded first under the interface, or null. */
  virtual Proxy* findServiceProxy(std::string& interfaceName) = 0;

  /**
   * @returns the proxy recorded first under the interface whose request has exactly this service
   *     channel and qualifier, or null.
   */
  virtual Proxy* findServiceProxy(std::string& interfaceName, std::string& svcChannel,
                                  std::string& qualifier) = 0;

  /** @returns the invoker recorded first for exactly this interface and protocol, or null. */
  virtual Invoker* findServiceInvoker(std::string& interfaceName, std::string& protocol) = 0;

  /** @returns the name of the service's channel; empty when it has none or is not recorded. */
  virtual std::string findSvcChannel(Service* service) = 0;

  /** @returns whether the service is recorded. */
  virtual bool containsService(Service* service) = 0;

  /**
   * @returns the record of the service that comes first in the order of the names, or null; valid
   *     until `deleteAllServices`.
   */
  virtual SvcData* getServiceData(Service* service) = 0;

  /** Shuts every executor down and stops every service that has a channel; deletes nothing. */
  virtual void shutdownAllServices() = 0;

  /**
   * Deletes each service with its executor and library, and forgets them. Waits without limit for
   * the threads of the services.
   */
  virtual void deleteAllServices() = 0;

  /** Deletes each invoker with its library, and forgets them. */
  virtual void deleteAllServiceInvokers() = 0;

  /** Deletes each proxy with its request, channel and library, and forgets them. */
  virtual void deleteAllServiceProxies() = 0;

  /** Deletes one proxy with its request, channel and library, if it is recorded under the name. */
  virtual void deleteOneServiceProxy(Proxy* proxy, std::string& interfaceName) = 0;

  virtual ~AbstractServiceRepository() = default;
};
