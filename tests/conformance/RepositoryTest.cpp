#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {

using fakes::Nested;

RepositoryTest::RepositoryTest() {
  sut = std::make_unique<OpenRepository>();
  forget();
}

fakes::RecordingService* RepositoryTest::newService() {
  const Nested nested;
  return new fakes::RecordingService;
}

CommsChannel* RepositoryTest::newChannel(const std::string& name) {
  const Nested nested;
  return new CommsChannel(name, nullptr);
}

ServiceExecutor* RepositoryTest::newExecutor(Service* service, CommsChannelIfc* channel) {
  const Nested nested;
  return new ServiceExecutor(service, channel, "", nullptr, nullptr, nullptr, true);
}

Dll* RepositoryTest::newDll() {
  const Nested nested;
  return new Dll("lib.so");
}

fakes::RecordingProxy* RepositoryTest::newProxy() {
  const Nested nested;
  return new fakes::RecordingProxy;
}

ProxyRequestImpl* RepositoryTest::newRequest(const std::string& svcChannel,
                                             const std::string& qualifier) {
  const Nested nested;
  return new ProxyRequestImpl(nullptr, svcChannel, "", "", nullptr, qualifier, nullptr);
}

fakes::RecordingInvoker* RepositoryTest::newInvoker() {
  const Nested nested;
  return new fakes::RecordingInvoker;
}

void RepositoryTest::addProxy(Proxy* proxy, Dll* dll, CommsChannelIfc* channel,
                              ProxyRequest* request, std::string interfaceName) {
  sut->addServiceProxy(proxy, dll, channel, request, interfaceName);
}

void RepositoryTest::addInvoker(Invoker* invoker, Dll* dll, std::string interfaceName,
                                std::string protocol) {
  sut->addServiceInvoker(invoker, dll, interfaceName, protocol);
}

Service* RepositoryTest::findService(std::string interfaceName, const std::string& channelName) {
  return sut->findService(interfaceName, channelName);
}

Proxy* RepositoryTest::findProxy(std::string interfaceName) {
  return sut->findServiceProxy(interfaceName);
}

Proxy* RepositoryTest::findProxy(std::string interfaceName, std::string svcChannel,
                                 std::string qualifier) {
  return sut->findServiceProxy(interfaceName, svcChannel, qualifier);
}

Invoker* RepositoryTest::findInvoker(std::string interfaceName, std::string protocol) {
  return sut->findServiceInvoker(interfaceName, protocol);
}

}  // namespace zerva::conformance
