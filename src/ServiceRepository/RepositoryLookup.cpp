#include <algorithm>

#include "ServiceRepository.h"
#include "framework/CommsChannelIfc.h"
#include "framework/ProxyRequest.h"
#include "src/ServiceRepository/SemaphoreHolder.h"

namespace {

using ServiceMap = std::multimap<std::string, SvcData>;

/** Walks the whole map: services are seldom looked up by object, so there is no second index. */
ServiceMap::iterator findEntryOf(ServiceMap& services, const Service* service) {
  return std::find_if(
      services.begin(), services.end(),
      [service](const ServiceMap::value_type& entry) { return entry.second.service == service; });
}

/** A service without a channel is on none, whatever its name. */
bool isOnChannel(const SvcData& data, const std::string& channelName) {
  return channelName.empty() || (data.channel != nullptr && data.channel->getName() == channelName);
}

bool isFor(const ProxyRequest* request, const std::string& svcChannel,
           const std::string& qualifier) {
  return request != nullptr && request->getSvcChannel() == svcChannel &&
         request->getQualifier() == qualifier;
}

}  // namespace

Service* ServiceRepository::findService(std::string& interfaceName,
                                        const std::string& channelName) {
  const zerva::SemaphoreHolder holder(svcMapSem);
  const auto [first, last] = svcMap.equal_range(interfaceName);
  for (auto entry = first; entry != last; ++entry) {
    if (isOnChannel(entry->second, channelName)) {
      return entry->second.service;
    }
  }
  return nullptr;
}

Proxy* ServiceRepository::findServiceProxy(std::string& interfaceName) {
  const zerva::SemaphoreHolder holder(proxyMapSem);
  // Not `find`: that gives any of the entries with the key.
  const auto entry = proxyMap.lower_bound(interfaceName);
  if (entry == proxyMap.end() || entry->first != interfaceName) {
    return nullptr;
  }
  return entry->second.proxy;
}

Proxy* ServiceRepository::findServiceProxy(std::string& interfaceName, std::string& svcChannel,
                                           std::string& qualifier) {
  const zerva::SemaphoreHolder holder(proxyMapSem);
  const auto [first, last] = proxyMap.equal_range(interfaceName);
  for (auto entry = first; entry != last; ++entry) {
    if (isFor(entry->second.request, svcChannel, qualifier)) {
      return entry->second.proxy;
    }
  }
  return nullptr;
}

Invoker* ServiceRepository::findServiceInvoker(std::string& interfaceName, std::string& protocol) {
  // In one piece of memory.
  std::string key;
  key.reserve(interfaceName.size() + 1 + protocol.size());
  key.append(interfaceName).append(1, ',').append(protocol);
  const zerva::SemaphoreHolder holder(invokerMapSem);
  const auto entry = invokerMap.lower_bound(key);
  if (entry == invokerMap.end() || entry->first != key) {
    return nullptr;
  }
  return entry->second.invoker;
}

std::string ServiceRepository::findSvcChannel(Service* service) {
  const zerva::SemaphoreHolder holder(svcMapSem);
  const auto entry = findEntryOf(svcMap, service);
  if (entry == svcMap.end() || entry->second.channel == nullptr) {
    return {};
  }
  return entry->second.channel->getName();
}

bool ServiceRepository::containsService(Service* service) {
  const zerva::SemaphoreHolder holder(svcMapSem);
  return findEntryOf(svcMap, service) != svcMap.end();
}

SvcData* ServiceRepository::getServiceData(Service* service) {
  const zerva::SemaphoreHolder holder(svcMapSem);
  const auto entry = findEntryOf(svcMap, service);
  return entry == svcMap.end() ? nullptr : &entry->second;
}
