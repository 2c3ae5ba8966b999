#include <cstdio>

#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/CommsChannel.h"
#include "framework/Dll.h"
#include "framework/Service.h"
#include "framework/ServiceExecutor.h"
#include "framework/ServiceThreadPool.h"
#include "framework/Threader.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/CreatorFunction.h"
#include "src/ServiceConfigurator/InitTiming.h"
#include "src/ServiceConfigurator/ProcessMonitoring.h"
#include "src/ServiceConfigurator/RegistryAccess.h"

namespace {

/** @returns the library, the caller's; or null, when that was reported. */
Dll* openServiceLibrary(const std::string& lib) {
  CONFIGURATOR_LOG_PROGRESS("Opening Lib: '%s'", lib.c_str());
  Dll* dll = new Dll(lib);
  if (const char* error = dll->error()) {
    CONFIGURATOR_LOG_ERROR("Error opening library '%s' - '%s'", lib.c_str(), error);
    std::printf("ServiceConfigurator::createServiceExecutor() Error opening library '%s' - '%s'\n",
                lib.c_str(), error);
    delete dll;
    return nullptr;
  }
  return dll;
}

/** @returns whether the creator was resolved; the failure is reported. The address tells nothing.
 */
bool resolveServiceCreator(Dll& dll, const std::string& creator, void*& address) {
  CONFIGURATOR_LOG_PROGRESS("Resolving symbol: '%s'", creator.c_str());
  address = dll.symbol(creator);
  if (const char* error = dll.error()) {
    CONFIGURATOR_LOG_ERROR("Error resolving symbol - '%s'", error);
    std::printf("ServiceConfigurator::createServiceExecutor() Error resolving symbol - '%s'\n",
                error);
    return false;
  }
  return true;
}

void startExecutor(ServiceExecutor& executor) {
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Starting Service Executor");
  Threader threader;
  unsigned long threadId = 0;
  executor.startThread(threader, threadId);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service Executor Running");
}

/** An ordinary service is announced before its `init`, so that others can wait for it. */
void announce(Context& context, const std::string& registryIfcName, const std::string& ifc,
              const std::string& chan) {
  if (ServiceRegistryIfc* registry = zerva::findRegistry(context, registryIfcName)) {
    registry->registerInterface(ifc, chan);
  } else {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::createServiceExecutor() cannot get svcRegistry interface!");
  }
}

/** The registry can announce itself only when it is ready, after its `init`. */
void announceRegistryItself(Service* service, const std::string& registryIfcName,
                            const std::string& ifc, const std::string& chan) {
  if (auto* registry = dynamic_cast<ServiceRegistryIfc*>(service)) {
    registry->registerInterface(ifc, chan);
  } else {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::createServiceExecutor() svcRegistry not found, interface:'%s' not "
        "registered",
        registryIfcName.c_str());
  }
}

}  // namespace

Service* ServiceConfigurator::createServiceExecutor(const std::string& lib,
                                                    const std::string& creator,
                                                    const std::string& chan, const std::string& ifc,
                                                    bool flag) {
  static const std::string registryIfcName("ServiceRegistryIfc");

  // Library, channel and executor are the repository's once the service is recorded with them.
  Dll* dll = openServiceLibrary(lib);
  if (dll == nullptr) {
    return nullptr;
  }
  void* address = nullptr;
  if (!resolveServiceCreator(*dll, creator, address)) {
    delete dll;
    return nullptr;
  }
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling creator fn");
  Service* service = zerva::callCreator<Service>(address);

  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Creating CommsChannel - '%s'", chan.c_str());
  CommsChannelIfc* channel = new CommsChannel(chan, ccInterceptorDispatcher);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Creating Service Executor");
  auto* executor = new ServiceExecutor(service, channel, ifc, this, threadPool,
                                       invokeInterceptorDispatcher, flag);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service Executor created successfully");
  if (service == nullptr) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::createServiceExecutor() : Error while initializing service (NULL "
        "pointer returned).");
    delete dll;
    delete executor;
    return nullptr;
  }
  serviceRepository->addService(service, executor, channel, dll, ifc);

  if (ifc != registryIfcName) {
    announce(*this, registryIfcName, ifc, chan);
  }
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling init ifc = '%s'", ifc.c_str());
  zerva::initialiseTimed(*service, this, ifc);
  if (ifc == registryIfcName) {
    announceRegistryItself(service, registryIfcName, ifc, chan);
  }
  if (zerva::isHeartbeat(ifc)) {
    zerva::startMonitoring(chan);
  }
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service created successfully ifc = '%s'",
                            ifc.c_str());
  startExecutor(*executor);
  return service;
}

Service* ServiceConfigurator::createServiceExecutorDelayedInitialisation(const std::string& lib,
                                                                         const std::string& creator,
                                                                         const std::string& chan,
                                                                         const std::string& ifc,
                                                                         bool flag) {
  static const std::string registryIfcName("ServiceRegistryIfc");

  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Creating CommsChannel - '%s'", chan.c_str());
  CommsChannelIfc* channel = new CommsChannel(chan, ccInterceptorDispatcher);
  CONFIGURATOR_LOG_PROGRESS(
      "Service Configurator: Creating Service Executor with lazy initialisation");
  // The pool's until its service is made and recorded with it.
  auto* executor = new ServiceExecutor(lib, creator, ifc, channel, this, threadPool,
                                       invokeInterceptorDispatcher, flag);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service Executor created successfully");
  startExecutor(*executor);

  // The registry announces itself when it has been made.
  if (ifc == registryIfcName) {
    return nullptr;
  }
  if (ServiceRegistryIfc* registry = zerva::findRegistry(*this, registryIfcName)) {
    registry->registerInterface(ifc, chan);
  } else {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::createServiceExecutorDelayedInitialisation() cannot get svcRegistry "
        "interface!");
  }
  return nullptr;
}
