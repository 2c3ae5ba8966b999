#include <cstdio>

#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/CommsChannelIfc.h"
#include "framework/Dll.h"
#include "framework/Service.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/CreatorFunction.h"
#include "src/ServiceConfigurator/InitTiming.h"
#include "src/ServiceConfigurator/ProcessMonitoring.h"
#include "src/ServiceConfigurator/RegistryAccess.h"

namespace {

/** @returns the library, the caller's; or null, when that was reported. */
Dll* openLazyLibrary(const std::string& lib) {
  std::string text = "Opening Lib: " + lib;
  CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  Dll* dll = new Dll(lib);
  if (const char* error = dll->error()) {
    text = std::string("Error opening library - ") + error;
    CONFIGURATOR_LOG_ERROR("%s", text.c_str());
    std::printf("ServiceConfigurator::initialiseService() %s\n", text.c_str());
    delete dll;
    return nullptr;
  }
  return dll;
}

/** @returns whether the creator was resolved; the failure is reported. The address tells nothing.
 */
bool resolveLazyCreator(Dll& dll, const std::string& creator, void*& address) {
  std::string text = "Resolving symbol: " + creator;
  CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  address = dll.symbol(creator);
  if (const char* error = dll.error()) {
    text = std::string("Error resolving symbol - ") + error;
    CONFIGURATOR_LOG_ERROR("%s", text.c_str());
    std::printf("ServiceConfigurator::initialiseService() %s\n", text.c_str());
    return false;
  }
  return true;
}

/** Through a proxy like anybody else: the object just made is not used directly. */
void announceLazyRegistry(Context& context, const std::string& registryIfcName,
                          const std::string& ifc, const CommsChannelIfc* channel) {
  if (ServiceRegistryIfc* registry = zerva::findRegistry(context, registryIfcName)) {
    registry->registerInterface(ifc, channel->getName());
  } else {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::initialiseService() svcRegistry not found, interface:'%s' not "
        "registered",
        registryIfcName.c_str());
  }
}

}  // namespace

Service* ServiceConfigurator::initialiseService(ServiceExecutor* executor, std::string lib,
                                                std::string creator, CommsChannelIfc* channel,
                                                std::string ifc) {
  static const std::string registryIfcName("ServiceRegistryIfc");

  CONFIGURATOR_LOG_PROGRESS(
      "Creating Service for second stage of delayed/lazy ServiceExecutor startup");
  // The repository's once the service is recorded with it.
  Dll* dll = openLazyLibrary(lib);
  if (dll == nullptr) {
    return nullptr;
  }
  void* address = nullptr;
  if (!resolveLazyCreator(*dll, creator, address)) {
    delete dll;
    return nullptr;
  }
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling creator fn");
  Service* service = zerva::callCreator<Service>(address);
  if (service == nullptr) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::initialiseService() : Error while initializing service (NULL pointer "
        "returned).");
    delete dll;
    return nullptr;
  }
  serviceRepository->addService(service, executor, channel, dll, ifc);

  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling init ifc = '%s'", ifc.c_str());
  zerva::initialiseTimed(*service, this, ifc);
  if (ifc == registryIfcName) {
    announceLazyRegistry(*this, registryIfcName, ifc, channel);
  }
  if (zerva::isHeartbeat(ifc)) {
    zerva::startMonitoring(findChannel(service));
  }
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service created successfully ifc = '%s'",
                            ifc.c_str());
  return service;
}
