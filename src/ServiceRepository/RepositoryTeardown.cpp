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
  zerva::OnceEach executors;
  zerva::OnceEach services;
  zerva::OnceEach libraries;
  for (auto& [name, data] : svcMap) {
    if (executors.isNew(data.executor)) {
      delete data.executor;
    }
    if (services.isNew(data.service)) {
      data.service->waitForThreadCompletion();
      delete data.service;
    }
    if (libraries.isNew(data.dll)) {
      delete data.dll;
    }
  }
  svcMap.clear();
}

void ServiceRepository::deleteAllServiceProxies() {
  const zerva::SemaphoreHolder holder(proxyMapSem);
  zerva::OnceEach proxies;
  zerva::OnceEach requests;
  zerva::OnceEach channels;
  zerva::OnceEach libraries;
  for (auto& [name, data] : proxyMap) {
    if (proxies.isNew(data.proxy)) {
      delete data.proxy;
    }
    if (requests.isNew(data.request)) {
      delete data.request;
    }
    if (channels.isNew(data.channel)) {
      delete data.channel;
    }
    if (libraries.isNew(data.dll)) {
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
  zerva::OnceEach invokers;
  zerva::OnceEach libraries;
  for (auto& [key, data] : invokerMap) {
    if (invokers.isNew(data.invoker)) {
      delete data.invoker;
    }
    if (libraries.isNew(data.dll)) {
      delete data.dll;
    }
  }
  invokerMap.clear();
}
