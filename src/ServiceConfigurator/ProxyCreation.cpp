#include <cstdio>

#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/AbstractProtocolRepository.h"
#include "framework/CommsChannel.h"
#include "framework/Dll.h"
#include "framework/Proxy.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/Semaphore.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/CreatorFunction.h"
#include "src/ServiceConfigurator/ProxyChannelName.h"

namespace {

/** @returns the library, the caller's; or null, when that was reported. */
Dll* openProxyLibrary(const std::string& lib) {
  Dll* dll = new Dll(lib);
  if (const char* error = dll->error()) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::initProxyAndAddToRepository() failed on opening Dll (%s) error: '%s'",
        lib.c_str(), error);
    std::printf(
        "ServiceConfigurator::initProxyAndAddToRepository() failed on opening Dll (%s) error: "
        "'%s'\n",
        lib.c_str(), error);
    delete dll;
    return nullptr;
  }
  return dll;
}

/** @returns whether the creator was resolved; the failure is reported. The address tells nothing.
 */
bool resolveProxyCreator(Dll& dll, const std::string& lib, const std::string& creator,
                         void*& address) {
  address = dll.symbol(creator);
  if (const char* error = dll.error()) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::initProxyAndAddToRepository() failed on fetching symbol (%s) from "
        "(%s) error: '%s'",
        creator.c_str(), lib.c_str(), error);
    std::printf(
        "ServiceConfigurator::initProxyAndAddToRepository() failed on fetching symbol (%s) from "
        "(%s) error: '%s'\n",
        creator.c_str(), lib.c_str(), error);
    return false;
  }
  return true;
}

}  // namespace

// The semaphore is given back by hand, and not when an exception passes: what was made half then
// stays, and proxies are neither made nor removed any more.
Proxy* ServiceConfigurator::initProxyAndAddToRepository(std::string& lib, std::string& creator,
                                                        std::string& svcChannel, std::string& ifc,
                                                        std::string& qualifier) {
  proxySem->take(-1);
  if (protocolRepository == nullptr) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::initProxyAndAddToRepository() no Protocol Repository, cannot make "
        "proxy for interface:'%s'",
        ifc.c_str());
    proxySem->give();
    return nullptr;
  }
  CONFIGURATOR_LOG_PROGRESS(
      "%s", ("Proxy info found- Lib: " + lib + " Cr: " + creator + " Comm: " + svcChannel).c_str());
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Resolving symbol to proxy creator function");
  // Library, channel and request are the repository's once the proxy is recorded with them.
  Dll* dll = openProxyLibrary(lib);
  if (dll == nullptr) {
    proxySem->give();
    return nullptr;
  }
  void* address = nullptr;
  if (!resolveProxyCreator(*dll, lib, creator, address)) {
    delete dll;
    proxySem->give();
    return nullptr;
  }
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling proxy creator function");
  Proxy* proxy = zerva::callCreator<Proxy>(address);

  // Without the dispatcher of the services' channels: it sees each call at the service's end.
  CommsChannelIfc* channel = new CommsChannel(zerva::makeProxyChannelName(svcChannel), nullptr);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Initialising proxy with request object");
  const std::string protocol("zerva_simple_rmi");
  ProtocolAdapter* adapter = protocolRepository->findProtocolAdapter(protocol);
  ProxyRequest* request =
      new ProxyRequestImpl(channel, svcChannel, ifc, protocol, adapter, qualifier, this);
  proxy->initialise(request);
  serviceRepository->addServiceProxy(proxy, dll, channel, request, ifc);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service proxy discovered & created, returning");
  proxySem->give();
  return proxy;
}
