#include "AbstractServiceRepository.h"
#include "FrameworkException.h"
#include "ServiceConfigurator.h"
#include "framework/AbstractProtocolRepository.h"
#include "framework/Proxy.h"
#include "framework/Service.h"
#include "framework/ServiceExecutor.h"
#include "src/ServiceRepository/SemaphoreHolder.h"

ProtocolAdapter* ServiceConfigurator::findProtocolAdapter(std::string& protocol) {
  if (protocolRepository == nullptr) {
    throw FrameworkException(
        "Attempt to find protocol adapter from uninitiliased Protocol Repository");
  }
  return protocolRepository->findProtocolAdapter(protocol);
}

Service* ServiceConfigurator::findRealService(const std::string& interfaceName,
                                              const std::string& channelName) {
  std::string name = interfaceName;
  Service* service = serviceRepository->findService(name, channelName);
  if (service != nullptr) {
    const SvcData* data = serviceRepository->getServiceData(service);
    // A legacy service has no executor: it was initialised before it was started.
    if (data != nullptr && data->executor != nullptr) {
      data->executor->initService();
    }
  }
  return service;
}

std::string ServiceConfigurator::findChannel(Executable* executable) {
  Service* service = nullptr;
  if (executable != nullptr) {
    service = dynamic_cast<Service*>(executable);
  }
  return serviceRepository->findSvcChannel(service);
}

Proxy* ServiceConfigurator::findProxy(std::string& ifc, std::string& svcChannel) {
  std::string qualifier;
  return findProxy(ifc, svcChannel, qualifier);
}

void ServiceConfigurator::removeAndDeleteProxyFromRepository(Proxy* proxy,
                                                             std::string& interfaceName) {
  const zerva::SemaphoreHolder holder(*proxySem);
  serviceRepository->deleteOneServiceProxy(proxy, interfaceName);
}
