#include <algorithm>

#include "ServiceRepository.h"
#include "framework/CommsChannelIfc.h"
#include "framework/Dll.h"
#include "framework/Invoker.h"
#include "framework/Proxy.h"
#include "framework/ProxyRequest.h"
#include "framework/Service.h"
#include "framework/ServiceExecutor.h"
#include "src/ServiceRepository/OnceEach.h"
#include "src/ServiceRepository/RepositoryLog.h"
#include "src/ServiceRepository/SemaphoreHolder.h"

// The deletions below are those of the owner: what was recorded belongs to the repository. The
// order matters everywhere: what uses something goes before it, the library goes last.

void ServiceRepository::shutdownAllServices() {
  const zerva::SemaphoreHolder holder(svcMapSem);
  for (auto& [name, data] : svcMap) {
    if (data.executor != nullptr) {
      data.executor->shutdown();
    }
    if (data.channel != nullptr && data.service != nullptr) {
      data.service->stop();
    }
  }
}

void ServiceRepository::deleteAllServices() {
  const zerva::SemaphoreHolder holder(svcMapSem);
  zerva::OnceEach executors(svcMap, &SvcData::executor);
  zerva::OnceEach services(svcMap, &SvcData::service);
  zerva::OnceEach libraries(svcMap, &SvcData::dll);
  for (auto entry = svcMap.begin(); entry != svcMap.end(); ++entry) {
    const auto& data = entry->second;
    if (executors.isNew(entry)) {
      delete data.executor;
    }
    if (services.isNew(entry)) {
      data.service->waitForThreadCompletion();
      delete data.service;
    }
    if (libraries.isNew(entry)) {
      delete data.dll;
    }
  }
  svcMap.clear();
}

void ServiceRepository::deleteAllServiceProxies() {
  const zerva::SemaphoreHolder holder(proxyMapSem);
  zerva::OnceEach proxies(proxyMap, &SvcProxyData::proxy);
  zerva::OnceEach requests(proxyMap, &SvcProxyData::request);
  zerva::OnceEach channels(proxyMap, &SvcProxyData::channel);
  zerva::OnceEach libraries(proxyMap, &SvcProxyData::dll);
  for (auto entry = proxyMap.begin(); entry != proxyMap.end(); ++entry) {
    const auto& data = entry->second;
    if (proxies.isNew(entry)) {
      delete data.proxy;
    }
    if (requests.isNew(entry)) {
      delete data.request;
    }
    if (channels.isNew(entry)) {
      delete data.channel;
    }
    if (libraries.isNew(entry)) {
      delete data.dll;
    }
  }
  proxyMap.clear();
}

void ServiceRepository::deleteOneServiceProxy(Proxy* proxy, std::string& interfaceName) {
  REPOSITORY_LOG_PROGRESS("proxyToRemove: %p", static_cast<void*>(proxy));
  const zerva::SemaphoreHolder holder(proxyMapSem);
  const auto entry = std::find_if(proxyMap.begin(), proxyMap.end(), [&](const auto& candidate) {
    return candidate.second.proxy == proxy && candidate.first == interfaceName;
  });
  if (entry == proxyMap.end()) {
    REPOSITORY_LOG_ERROR("deleteOneServiceProxy: Proxy not found");
    return;
  }
  delete proxy;
  delete entry->second.request;
  delete entry->second.channel;
  delete entry->second.dll;
  proxyMap.erase(entry);
  REPOSITORY_LOG_PROGRESS(
      "deleteOneServiceProxy: Proxy found and deleted together with channel, Req and DLL");
}

void ServiceRepository::deleteAllServiceInvokers() {
  const zerva::SemaphoreHolder holder(invokerMapSem);
  zerva::OnceEach invokers(invokerMap, &SvcInvokerData::invoker);
  zerva::OnceEach libraries(invokerMap, &SvcInvokerData::dll);
  for (auto entry = invokerMap.begin(); entry != invokerMap.end(); ++entry) {
    const auto& data = entry->second;
    if (invokers.isNew(entry)) {
      delete data.invoker;
    }
    if (libraries.isNew(entry)) {
      delete data.dll;
    }
  }
  invokerMap.clear();
}
