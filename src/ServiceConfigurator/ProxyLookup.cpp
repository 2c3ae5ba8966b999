#include "AbstractServiceRepository.h"
#include "ServiceConfigurator.h"
#include "framework/CommsChannelIfc.h"
#include "framework/Proxy.h"
#include "src/ServiceConfigurator/ConfiguratorLog.h"
#include "src/ServiceConfigurator/RegistryReply.h"

Executable* ServiceConfigurator::findService(const std::string& ifc) {
  CONFIGURATOR_LOG_PROGRESS("findService called for interface: %s", ifc.c_str());
  // A repository may write into the name that it is given; each gets a copy of its own.
  std::string sought = ifc;
  if (Proxy* proxy = serviceRepository->findServiceProxy(sought)) {
    CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service proxy found locally, returning");
    return proxy;
  }

  std::string request = "find:" + ifc + "," + commsChannel->getName();
  std::string response;
  findInRegistry(request, response);
  std::vector<std::string> tokens =
      parseDirectives(response.c_str(), static_cast<int>(response.size()), ",");
  std::string status;
  std::string svcChannel;
  if (!tokens.empty()) {
    status = tokens.at(0);
    svcChannel = tokens.at(1);
  }
  if (status != "found") {
    return nullptr;
  }

  request = "find_proxy:" + ifc;
  findInRegistry(request, response);
  tokens = parseDirectives(response.c_str(), static_cast<int>(response.size()), ",");
  zerva::CodeReply reply = zerva::readCodeReply(tokens);
  if (reply.status != "found_proxy") {
    return nullptr;
  }
  std::string recorded = ifc;
  std::string qualifier;
  return initProxyAndAddToRepository(reply.lib, reply.creator, svcChannel, recorded, qualifier);
}

Proxy* ServiceConfigurator::findProxy(std::string& ifc, std::string& svcChannel,
                                      std::string& qualifier) {
  CONFIGURATOR_LOG_PROGRESS("ServiceConfigurator::findProxy( interface='%s' svcChannel='%s'",
                            ifc.c_str(), svcChannel.c_str());
  if (svcChannel.empty()) {
    CONFIGURATOR_LOG_ERROR("ServiceConfigurator::findProxy( interface='%s' svcChannel=''",
                           ifc.c_str());
    return nullptr;
  }
  if (Proxy* proxy = serviceRepository->findServiceProxy(ifc, svcChannel, qualifier)) {
    CONFIGURATOR_LOG_PROGRESS("Service Configurator: Service proxy found locally, returning\n");
    return proxy;
  }

  std::string request = "find_proxy:" + ifc;
  std::string response;
  findInRegistry(request, response);
  const std::vector<std::string> tokens =
      parseDirectives(response.c_str(), static_cast<int>(response.size()), ",");
  zerva::CodeReply reply = zerva::readCodeReply(tokens);
  if (reply.status != "found_proxy") {
    return nullptr;
  }
  return initProxyAndAddToRepository(reply.lib, reply.creator, svcChannel, ifc, qualifier);
}
