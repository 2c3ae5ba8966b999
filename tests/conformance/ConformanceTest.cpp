#include "tests/conformance/ConformanceTest.h"

#include <algorithm>

#include "framework/Dll.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/ServiceExecutor.h"
#include "framework/ServiceThreadPool.h"
#include "tests/fakes/SemaphoreTable.h"

namespace zerva::conformance {
namespace {

bool isEndOfThreader(const std::string& line) { return line.rfind("~Threader#", 0) == 0; }

}  // namespace

ConformanceTest::ConformanceTest() {
  Platform::reset();
  // For the repository, which each test has.
  Platform::nameSemaphores({"svcMapSem", "proxyMapSem", "invokerMapSem"});
}

ConformanceTest::~ConformanceTest() {
  std::vector<std::string> living = fakes::Objects::living();
  std::sort(left.begin(), left.end());
  EXPECT_EQ(asText(living), asText(left)) << "left behind";
  EXPECT_EQ(asText(fakes::SemaphoreTable::held()), "") << "left taken";
  Platform::reset();
}

void ConformanceTest::expectTrace(const Lines& expected) {
  EXPECT_EQ(asText(Trace::lines()), asText(expected)) << "all:\n" << asText(Trace::everything());
  Trace::clear();
}

void ConformanceTest::expectTraceButEndOfThreader(const Lines& expected) {
  Lines lines = Trace::lines();
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(), isEndOfThreader), 1);
  std::erase_if(lines, isEndOfThreader);
  EXPECT_EQ(asText(lines), asText(expected)) << "all:\n" << asText(Trace::everything());
  Trace::clear();
}

void ConformanceTest::offerInvoker(const std::string& lib, const std::string& creator) {
  offer(lib, creator, fakes::Creators::invoker([creator]() -> Invoker* {
          Trace::record(creator + "()");
          return new fakes::RecordingInvoker;
        }));
}

void ConformanceTest::offerNoService(const std::string& lib, const std::string& creator) {
  offer(lib, creator, fakes::Creators::service([creator]() -> Service* {
          Trace::record(creator + "()");
          return nullptr;
        }));
}

void ConformanceTest::offerNoInvoker(const std::string& lib, const std::string& creator) {
  offer(lib, creator, fakes::Creators::invoker([creator]() -> Invoker* {
          Trace::record(creator + "()");
          return nullptr;
        }));
}

std::string ConformanceTest::opened(const std::string& dll, const std::string& lib) {
  return asText({dll + " = Dll(" + fakes::inQuotes(lib) + ")", dll + ".error() -> null"});
}

std::string ConformanceTest::resolved(const std::string& dll, const std::string& creator) {
  return asText({dll + ".symbol(" + fakes::inQuotes(creator) + ")", dll + ".error() -> null"});
}

HostTest::HostTest() : channel("host", nullptr), adapter("zerva_simple_rmi"), repository(inner) {
  using fakes::Objects;
  Objects::call(&channel, "host");
  Objects::call(&interceptors, "interceptors");
  Objects::call(&invokeInterceptors, "invokeInterceptors");
  Objects::call(&protocols, "protocols");
  Objects::call(&adapter, "adapter");
  protocols.add("zerva_simple_rmi", &adapter);
  Objects::renumber();
  forget();
}

ConfiguratorTest::ConfiguratorTest() {
  sut =
      make<TestConfigurator>(&channel, &repository, &protocols, &interceptors, &invokeInterceptors);
}

Service* ConfiguratorTest::recordService(const std::string& ifc, const std::string& chan) {
  auto* service = new fakes::RecordingService;
  auto* own = new CommsChannel(chan, nullptr);
  auto* executor =
      new ServiceExecutor(service, own, ifc, &sut->framework(), sut->threadPool, nullptr, true);
  inner.addService(service, executor, own, new Dll("libfoo.so"), ifc);
  forget();
  return service;
}

Service* ConfiguratorTest::recordLegacyService(const std::string& ifc) {
  auto* service = new fakes::RecordingService;
  inner.addService(service, new Dll("libold.so"), ifc);
  forget();
  return service;
}

Proxy* ConfiguratorTest::recordProxy(std::string ifc, const std::string& svcChannel,
                                     const std::string& qualifier) {
  auto* proxy = new fakes::RecordingProxy;
  auto* own = new CommsChannel("own", nullptr);
  auto* request = new ProxyRequestImpl(own, svcChannel, ifc, "zerva_simple_rmi", &adapter,
                                       qualifier, &sut->framework());
  inner.addServiceProxy(proxy, new Dll("libproxy.so"), own, request, ifc);
  forget();
  return proxy;
}

std::string HostTest::initTook(const std::string& ifc, long seconds, long milliseconds) {
  return progress("Service Configurator: For ifc = '%s' init() took %ld.%lds using CLOCK_MONOTONIC",
                  ifc, seconds, milliseconds);
}

std::string HostTest::query(const std::string& request, int n) {
  const std::string message = "Message#" + std::to_string(n);
  const std::string id = std::to_string(n);
  return asText({message + " = Message()", message + ".setChannel(\"/zerva/serviceregistry\")",
                 message + ".setData(" + fakes::inQuotes(request) + ")", locked("registrySem", {}),
                 message + ".setRequestId(" + id + ")", "host.send(" + message + ")",
                 "host.receiveReply(" + message + ", " + id + ")", message + ".getData()",
                 "~" + message});
}

}  // namespace zerva::conformance
