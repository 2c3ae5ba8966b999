#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ServiceRepository.h"
#include "framework/CommsChannel.h"
#include "framework/Dll.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/ServiceExecutor.h"
#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {

/** A repository whose maps a test can see. */
class OpenRepository : public ServiceRepository {
 public:
  using ServiceRepository::invokerMap;
  using ServiceRepository::invokerMapSem;
  using ServiceRepository::proxyMap;
  using ServiceRepository::proxyMapSem;
  using ServiceRepository::svcMap;
  using ServiceRepository::svcMapSem;
};

/** A test of a repository by itself. What a test makes here is not seen in the trace. */
class RepositoryTest : public ConformanceTest {
 protected:
  RepositoryTest();

  template <class... Arguments>
  static std::string progress(const std::string& format, const Arguments&... arguments) {
    return guarded(5, logLine("src/ServiceRepository", 5, format, arguments...));
  }

  template <class... Arguments>
  static std::string error(const std::string& format, const Arguments&... arguments) {
    return logLine("src/ServiceRepository", 2, format, arguments...);
  }

  static fakes::RecordingService* newService();
  static CommsChannel* newChannel(const std::string& name);
  /** An executor that owns its channel, as all do. */
  static ServiceExecutor* newExecutor(Service* service, CommsChannelIfc* channel);
  static Dll* newDll();
  static fakes::RecordingProxy* newProxy();
  static ProxyRequestImpl* newRequest(const std::string& svcChannel, const std::string& qualifier);
  static fakes::RecordingInvoker* newInvoker();

  /** Adds as a caller does that has constants: the operations take references. */
  void addProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel, ProxyRequest* request,
                std::string interfaceName);
  void addInvoker(Invoker* invoker, Dll* dll, std::string interfaceName, std::string protocol);
  Service* findService(std::string interfaceName, const std::string& channelName);
  Proxy* findProxy(std::string interfaceName);
  Proxy* findProxy(std::string interfaceName, std::string svcChannel, std::string qualifier);
  Invoker* findInvoker(std::string interfaceName, std::string protocol);

  /** Deletes an object at the end of the test, because the repository does not. */
  template <class Object>
  Object* keep(Object* object) {
    kept.emplace_back(object, [](void* address) { delete static_cast<Object*>(address); });
    return object;
  }

 private:
  std::vector<std::shared_ptr<void>> kept;

 protected:
  std::unique_ptr<OpenRepository> sut;
};

}  // namespace zerva::conformance
