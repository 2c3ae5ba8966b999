#include <cstdio>

#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/Dll.h"
#include "framework/Service.h"
#include "framework/Threader.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/CreatorFunction.h"
#include "src/ServiceConfigurator/InitTiming.h"
#include "src/ServiceConfigurator/ProcessMonitoring.h"

namespace {

/** @returns the library, the caller's; or null, when that was reported. */
Dll* openLegacyLibrary(const std::string& lib) {
  std::string text = "Opening library - " + lib;
  CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  Dll* dll = new Dll(lib);
  if (const char* error = dll->error()) {
    text = "Error opening library " + lib + " - " + error;
    CONFIGURATOR_LOG_ERROR("%s", text.c_str());
    std::printf("ServiceConfigurator::createService() %s\n", text.c_str());
    delete dll;
    return nullptr;
  }
  return dll;
}

/** @returns whether the creator was resolved; the failure is reported. The address tells nothing.
 */
bool resolveLegacyCreator(Dll& dll, const std::string& creator, void*& address) {
  std::string text = "Resolving symbol - " + creator;
  CONFIGURATOR_LOG_PROGRESS("%s", text.c_str());
  address = dll.symbol(creator);
  if (const char* error = dll.error()) {
    text = std::string("Error resolving symbol - ") + error;
    CONFIGURATOR_LOG_ERROR("%s", text.c_str());
    std::printf("ServiceConfigurator::createService() %s\n", text.c_str());
    return false;
  }
  return true;
}

}  // namespace

Service* ServiceConfigurator::createService(std::string lib, std::string creator, std::string ifc) {
  // The repository's once the service is recorded with it.
  Dll* dll = openLegacyLibrary(lib);
  if (dll == nullptr) {
    return nullptr;
  }
  void* address = nullptr;
  if (!resolveLegacyCreator(*dll, creator, address)) {
    delete dll;
    return nullptr;
  }

  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling creator fn");
  Service* service = zerva::callCreator<Service>(address);
  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Calling init");
  if (service == nullptr) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::createService() : Error while initializing service (NULL pointer "
        "returned).");
    delete dll;
    return nullptr;
  }
  serviceRepository->addService(service, dll, ifc);
  zerva::initialiseTimed(*service, this, ifc);
  if (zerva::isHeartbeat(ifc)) {
    zerva::startMonitoring(findChannel(service));
  }

  CONFIGURATOR_LOG_PROGRESS("Service Configurator: Creating thread");
  Threader threader;
  unsigned long threadId = 0;
  threader.spawn(&threadId, service, "", THREAD_PRIORITY_NORMAL, 0);
  return service;
}
