#include <cstdio>

#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/Dll.h"
#include "framework/Invoker.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/CreatorFunction.h"

// The registry cannot be asked where its own invoker lives, so that one comes from a fixed library.
void ServiceConfigurator::createSvcRegInvoker() {
  // The repository's once an invoker is recorded with it.
  Dll* dll = new Dll(SVC_REG_INVOKER_LIB);
  if (const char* error = dll->error()) {
    CONFIGURATOR_LOG_ERROR("Unable to open 'service registry invoker' library '%s': '%s'",
                           SVC_REG_INVOKER_LIB.c_str(), error);
    std::printf("Unable to open 'service registry invoker' library '%s': '%s'\n",
                SVC_REG_INVOKER_LIB.c_str(), error);
    delete dll;
    return;
  }

  void* creator = dll->symbol(SVC_REG_INVOKER_CREATORFN);
  if (const char* error = dll->error()) {
    CONFIGURATOR_LOG_ERROR("Error resolving 'service registry invoker' creator function '%s': '%s'",
                           SVC_REG_INVOKER_CREATORFN.c_str(), error);
    std::printf("Error resolving 'service registry invoker' creator function '%s': '%s'\n",
                SVC_REG_INVOKER_CREATORFN.c_str(), error);
    delete dll;
    return;
  }

  Invoker* invoker = zerva::callCreator<Invoker>(creator);
  const auto record = [&](std::string interfaceName, std::string protocol) {
    serviceRepository->addServiceInvoker(invoker, dll, interfaceName, protocol);
  };
  record(SVC_REG_INVOKER_INTERFACE, SVC_REG_INVOKER_PROTOCOL1);
  record(SVC_REG_INVOKER_INTERFACE, SVC_REG_INVOKER_PROTOCOL2);

  CONFIGURATOR_LOG_AT(4,
                      "Service Registry Invoker created:\n"
                      "   Created from library:          %s\n"
                      "   Created from creator Function: %s\n"
                      "   Supporting interface:          %s\n"
                      "   Supporting protocols:          %s, %s",
                      SVC_REG_INVOKER_LIB.c_str(), SVC_REG_INVOKER_CREATORFN.c_str(),
                      SVC_REG_INVOKER_INTERFACE.c_str(), SVC_REG_INVOKER_PROTOCOL1.c_str(),
                      SVC_REG_INVOKER_PROTOCOL2.c_str());
}
