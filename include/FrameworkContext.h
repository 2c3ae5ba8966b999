#pragma once

#include <string>

#include "framework/Export.h"

class CommsChannelIfc;
class Executable;
class Invoker;
class ProtocolAdapter;
class Proxy;
class Service;
class ServiceExecutor;

/**
 * The framework side of the run-time context: what executors, the timer and the requests of proxies
 * ask for. All operations may be called from any thread that holds no lock of its own.
 *
 * The order of the operations is part of the binary interface of the framework's libraries.
 */
class ZERVA_EXPORT FrameworkContext {
 public:
  /**
   * Finds the invoker of an interface for a protocol; it is made when it is asked for first.
   *
   * May block while the registry is asked. An executor may keep what it got until an invoker or an
   * adapter of the process ends, and may ask any number of times.
   *
   * @returns the invoker, kept by the repository, or null.
   */
  virtual Invoker* findInvoker(std::string& interface, std::string& protocol) = 0;

  /** As `findProxy` with three arguments, the qualifier being empty. */
  virtual Proxy* findProxy(std::string& ifc, std::string& svcChannel) = 0;

  /**
   * Finds the proxy for an interface on a channel; it is made when it is asked for first.
   *
   * @param ifc the interface's name.
   * @param svcChannel the name of the service's channel; an empty one finds nothing.
   * @param qualifier tells apart several proxies for the same interface and channel.
   * @returns the proxy, kept by the repository, or null. May block while the registry is asked.
   */
  virtual Proxy* findProxy(std::string& ifc, std::string& svcChannel, std::string& qualifier) = 0;

  /** Has no effect: proxies belong to the repository. */
  virtual void deleteProxy(Proxy* proxy);

  /**
   * @param executable a service; anything else, null included, has no channel.
   * @returns the name of the channel on which it is served, or an empty text.
   */
  virtual std::string findChannel(Executable* executable) = 0;

  /**
   * Makes the service of a lazy executor: loads its library, calls its creator, records the service
   * and initialises it. Runs on the executor's thread.
   *
   * @param executor the executor that asks.
   * @param lib the library of the service.
   * @param creator the name of the creator function in it.
   * @param channel the channel of the executor.
   * @param ifc the service's interface list, names separated by single blanks.
   * @returns the initialised service, kept by the repository, or null.
   * @throws what the creator or `init` throws.
   */
  virtual Service* initialiseService(ServiceExecutor* executor, std::string lib,
                                     std::string creator, CommsChannelIfc* channel,
                                     std::string ifc) = 0;

  /**
   * @returns the adapter of a protocol, or null when the host's protocol repository has none. An
   *     executor may keep it as it may keep an invoker.
   * @throws FrameworkException when the host gave no protocol repository.
   */
  virtual ProtocolAdapter* findProtocolAdapter(std::string& protocol) = 0;

  /** As in `SvcRTEContext`. */
  virtual void removeAndDeleteProxyFromRepository(Proxy* proxy, std::string& ifc) = 0;

  /**
   * Finds the service object itself, in this process, and waits until it is initialised.
   *
   * @param interfaceName an interface that the service is recorded under.
   * @param channelName the channel that it is served on; empty for any.
   * @returns the service, kept by the repository, or null.
   */
  virtual Service* findRealService(const std::string& interfaceName,
                                   const std::string& channelName) = 0;

 protected:
  ~FrameworkContext() = default;
};

inline void FrameworkContext::deleteProxy(Proxy* /*proxy*/) {}
