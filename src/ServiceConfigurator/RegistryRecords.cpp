#include "ServiceConfigurator.h"
#include "framework/CommsChannelIfc.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/RegistryAccess.h"

// Where the registry's own code lives cannot be told to the registry through its proxy, which is
// made from that very record: it is sent as text.

void ServiceConfigurator::registerInvokerInfo(const std::string& lib, const std::string& creator,
                                              const std::string& ifc, const std::string& prot) {
  static const std::string registryIfcName("ServiceRegistryIfc");

  if (ifc == registryIfcName) {
    const std::string registryChannel("/zerva/serviceregistry");
    commsChannel->sendTo(registryChannel,
                         "reg_invoker:" + lib + "," + creator + "," + ifc + "," + prot);
    return;
  }
  if (ServiceRegistryIfc* registry = zerva::findRegistry(*this, registryIfcName)) {
    registry->registerInvoker(lib, creator, ifc, prot);
    return;
  }
  CONFIGURATOR_LOG_ERROR(
      "ServiceConfigurator::registerInvokerInfo() cannot get svcRegistry interface!");
}

// Unlike an invoker's record, the registry's own is handed to it as any other, too.
void ServiceConfigurator::registerProxyInfo(const std::string& lib, const std::string& creator,
                                            const std::string& ifc, const std::string& prot) {
  static const std::string registryIfcName("ServiceRegistryIfc");

  if (ifc == registryIfcName) {
    const std::string registryChannel("/zerva/serviceregistry");
    commsChannel->sendTo(registryChannel,
                         "reg_proxy:" + lib + "," + creator + "," + ifc + "," + prot);
  }
  if (ServiceRegistryIfc* registry = zerva::findRegistry(*this, registryIfcName)) {
    registry->registerProxy(lib, creator, ifc, prot);
    return;
  }
  CONFIGURATOR_LOG_ERROR(
      "ServiceConfigurator::registerProxyInfo() cannot get svcRegistry interface!");
}
