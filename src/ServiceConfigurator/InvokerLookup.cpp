#include <cstdio>

#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/Dll.h"
#include "framework/Invoker.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/CreatorFunction.h"
#include "src/ServiceConfigurator/RegistryReply.h"
#include "src/ServiceRepository/SemaphoreHolder.h"

namespace {

/** @returns the library, the caller's; or null, when that was reported. */
Dll* openInvokerLibrary(const std::string& lib) {
  Dll* dll = new Dll(lib.c_str());
  if (const char* error = dll->error()) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::findInvoker() failed on opening Dll (%s) error: '%s'", lib.c_str(),
        error);
    std::printf("ServiceConfigurator::findInvoker() failed on opening Dll (%s) error: '%s'\n",
                lib.c_str(), error);
    delete dll;
    return nullptr;
  }
  return dll;
}

/** @returns whether the creator was resolved; the failure is reported. The address tells nothing.
 */
bool resolveInvokerCreator(Dll& dll, const std::string& lib, const std::string& creator,
                           void*& address) {
  address = dll.symbol(creator.c_str());
  if (const char* error = dll.error()) {
    CONFIGURATOR_LOG_ERROR(
        "ServiceConfigurator::findInvoker() failed on fetching symbol (%s) from (%s) error: '%s'",
        creator.c_str(), lib.c_str(), error);
    std::printf(
        "ServiceConfigurator::findInvoker() failed on fetching symbol (%s) from (%s) error: '%s'\n",
        creator.c_str(), lib.c_str(), error);
    return false;
  }
  return true;
}

}  // namespace

Invoker* ServiceConfigurator::findInvoker(std::string& interfaceName, std::string& protocol) {
  CONFIGURATOR_LOG_PROGRESS("findInvoker called for interface & protocol: %s,%s sem=%p",
                            interfaceName.c_str(), protocol.c_str(),
                            static_cast<void*>(invokerSem));
  if (Invoker* known = serviceRepository->findServiceInvoker(interfaceName, protocol)) {
    return known;
  }
  std::string request = "find_invoker:" + interfaceName + "," + protocol;
  std::string response;
  findInRegistry(request, response);
  const zerva::CodeReply reply = zerva::readCodeReply(
      parseDirectives(response.c_str(), static_cast<int>(response.size()), ","));
  if (reply.status != "found_invoker") {
    return nullptr;
  }

  const zerva::SemaphoreHolder holder(*invokerSem);
  // Another thread may have made it while this one asked.
  if (Invoker* known = serviceRepository->findServiceInvoker(interfaceName, protocol)) {
    return known;
  }
  CONFIGURATOR_LOG_PROGRESS(
      "Service Configurator: Resolving symbol to invoker creator function sem=%p",
      static_cast<void*>(invokerSem));
  // The repository's once the invoker is recorded with it.
  Dll* dll = openInvokerLibrary(reply.lib);
  if (dll == nullptr) {
    return nullptr;
  }
  void* address = nullptr;
  if (!resolveInvokerCreator(*dll, reply.lib, reply.creator, address)) {
    delete dll;
    return nullptr;
  }
  Invoker* invoker = zerva::callCreator<Invoker>(address);
  serviceRepository->addServiceInvoker(invoker, dll, interfaceName, protocol);
  return invoker;
}
