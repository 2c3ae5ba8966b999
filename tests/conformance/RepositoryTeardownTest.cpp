#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {
namespace {

class ShuttingServicesDown : public RepositoryTest {};

TEST_F(ShuttingServicesDown, ShutsTheExecutorDownThenStopsTheService) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, newDll(), "FooIfc");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {"ServiceExecutor#1.shutdown()", "Service#1.stop()"})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, LeavesTheEntries) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, newDll(), "FooIfc");
  sut->shutdownAllServices();
  EXPECT_EQ(sut->svcMap.size(), 1u);
  EXPECT_EQ(findService("FooIfc", ""), service);
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, OfTwoNames_StopsEntryByEntry) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, newDll(), "FooIfc BarIfc");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {"ServiceExecutor#1.shutdown()", "Service#1.stop()",
                                    "ServiceExecutor#1.shutdown()", "Service#1.stop()"})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, GoesInTheOrderOfTheNames) {
  for (const char* name : {"B", "A", "B"}) {
    auto* service = newService();
    auto* channel = newChannel(name);
    sut->addService(service, newExecutor(service, channel), channel, newDll(), name);
  }
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {"ServiceExecutor#2.shutdown()", "Service#2.stop()",
                                    "ServiceExecutor#1.shutdown()", "Service#1.stop()",
                                    "ServiceExecutor#3.shutdown()", "Service#3.stop()"})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, OfLegacyServicesOnly_CallsNothing) {
  sut->addService(newService(), newDll(), "OldIfc");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, WithoutAChannel_ShutsTheExecutorDownOnly) {
  auto* service = newService();
  sut->addService(service, newExecutor(service, newChannel("c")), nullptr, newDll(), "FooIfc");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {"ServiceExecutor#1.shutdown()"})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, WithoutAnExecutor_StopsTheServiceOnly) {
  auto* channel = keep(newChannel("c"));
  sut->addService(newService(), nullptr, channel, newDll(), "FooIfc");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {"Service#1.stop()"})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, WithoutAService_ShutsTheExecutorDownOnly) {
  auto* channel = newChannel("c");
  sut->addService(nullptr, newExecutor(nullptr, channel), channel, newDll(), "FooIfc");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {"ServiceExecutor#1.shutdown()"})});
  sut->deleteAllServices();
}

TEST_F(ShuttingServicesDown, LeavesProxiesAndInvokersAlone) {
  addProxy(newProxy(), newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
  addInvoker(newInvoker(), newDll(), "FooIfc", "tcp");
  forget();
  sut->shutdownAllServices();
  expectTrace({locked("svcMapSem", {})});
  sut->deleteAllServiceProxies();
  sut->deleteAllServiceInvokers();
}

class DeletingServices : public RepositoryTest {};

TEST_F(DeletingServices, DeletesExecutorWaitsAndDeletesServiceAndLibrary) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, newDll(), "FooIfc");
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {"~ServiceExecutor#1", "Service#1.waitForThreadCompletion()",
                                    "~Service#1", "~Dll#1"})});
  EXPECT_TRUE(sut->svcMap.empty());
}

TEST_F(DeletingServices, OfALegacyOne_WaitsForItsThread) {
  sut->addService(newService(), newDll(), "OldIfc");
  forget();
  sut->deleteAllServices();
  expectTrace(
      {locked("svcMapSem", {"Service#1.waitForThreadCompletion()", "~Service#1", "~Dll#1"})});
}

TEST_F(DeletingServices, OfTwoNames_DeletesEachObjectOnce) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, newDll(), "FooIfc BarIfc");
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {"~ServiceExecutor#1", "Service#1.waitForThreadCompletion()",
                                    "~Service#1", "~Dll#1"})});
  EXPECT_TRUE(sut->svcMap.empty());
}

TEST_F(DeletingServices, GoesInTheOrderOfTheNamesAndOfAdding) {
  for (const char* name : {"B", "A", "B"}) sut->addService(newService(), newDll(), name);
  forget();
  sut->deleteAllServices();
  expectTrace(
      {locked("svcMapSem", {"Service#2.waitForThreadCompletion()", "~Service#2", "~Dll#2",
                            "Service#1.waitForThreadCompletion()", "~Service#1", "~Dll#1",
                            "Service#3.waitForThreadCompletion()", "~Service#3", "~Dll#3"})});
}

TEST_F(DeletingServices, OfOneLibraryWithAnotherService_DeletesTheLibraryAtItsFirstEntry) {
  // Two entries may hold one library and different services.
  Dll* dll = newDll();
  sut->addService(newService(), dll, "A");
  sut->addService(newService(), dll, "B");
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {"Service#1.waitForThreadCompletion()", "~Service#1", "~Dll#1",
                                    "Service#2.waitForThreadCompletion()", "~Service#2"})});
}

TEST_F(DeletingServices, WithoutAService_DeletesWhatIsThere) {
  auto* channel = newChannel("c");
  sut->addService(nullptr, newExecutor(nullptr, channel), channel, newDll(), "FooIfc");
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {"~ServiceExecutor#1", "~Dll#1"})});
}

TEST_F(DeletingServices, WithoutAnything_DeletesNothing) {
  sut->addService(nullptr, nullptr, nullptr, nullptr, "FooIfc");
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {})});
  EXPECT_TRUE(sut->svcMap.empty());
}

TEST_F(DeletingServices, NeverDeletesTheChannel) {
  auto* channel = keep(newChannel("c"));
  sut->addService(newService(), nullptr, channel, newDll(), "FooIfc");
  sut->deleteAllServices();
  EXPECT_TRUE(fakes::Objects::isAlive(channel));
}

TEST_F(DeletingServices, LeavesARepositoryThatCanBeFilledAgain) {
  sut->addService(newService(), newDll(), "FooIfc");
  sut->deleteAllServices();
  auto* service = newService();
  sut->addService(service, newDll(), "FooIfc");
  EXPECT_EQ(findService("FooIfc", ""), service);
  sut->deleteAllServices();
  EXPECT_EQ(findService("FooIfc", ""), nullptr);
}

class DeletingProxies : public RepositoryTest {};

TEST_F(DeletingProxies, DeletesProxyRequestChannelAndLibrary) {
  addProxy(newProxy(), newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace(
      {locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1", "~CommsChannel#1", "~Dll#1"})});
  EXPECT_TRUE(sut->proxyMap.empty());
  EXPECT_EQ(findProxy("FooIfc"), nullptr);
}

TEST_F(DeletingProxies, GoesInTheOrderOfTheNamesAndOfAdding) {
  for (const char* name : {"B", "A", "B"}) addProxy(newProxy(), newDll(), nullptr, nullptr, name);
  forget();
  sut->deleteAllServiceProxies();
  expectTrace(
      {locked("proxyMapSem", {"~Proxy#2", "~Dll#2", "~Proxy#1", "~Dll#1", "~Proxy#3", "~Dll#3"})});
}

TEST_F(DeletingProxies, RecordedTwice_DeletesEachObjectOnce) {
  Proxy* proxy = newProxy();
  Dll* dll = newDll();
  CommsChannel* channel = newChannel("p");
  ProxyRequest* request = newRequest("s", "");
  addProxy(proxy, dll, channel, request, "FooIfc");
  addProxy(proxy, dll, channel, request, "BarIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace(
      {locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1", "~CommsChannel#1", "~Dll#1"})});
}

TEST_F(DeletingProxies, WithoutAnything_DeletesNothing) {
  addProxy(nullptr, nullptr, nullptr, nullptr, "FooIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace({locked("proxyMapSem", {})});
  EXPECT_TRUE(sut->proxyMap.empty());
}

class DeletingInvokers : public RepositoryTest {};

TEST_F(DeletingInvokers, DeletesInvokerAndLibrary) {
  addInvoker(newInvoker(), newDll(), "FooIfc", "tcp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {"~Invoker#1", "~Dll#1"})});
  EXPECT_TRUE(sut->invokerMap.empty());
  EXPECT_EQ(findInvoker("FooIfc", "tcp"), nullptr);
}

TEST_F(DeletingInvokers, OfTwoProtocols_DeletesEachObjectOnce) {
  Invoker* invoker = newInvoker();
  Dll* dll = newDll();
  addInvoker(invoker, dll, "FooIfc", "tcp");
  addInvoker(invoker, dll, "FooIfc", "udp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {"~Invoker#1", "~Dll#1"})});
  EXPECT_TRUE(sut->invokerMap.empty());
}

TEST_F(DeletingInvokers, GoesInTheOrderOfTheKeysAndOfAdding) {
  addInvoker(newInvoker(), newDll(), "B", "y");
  addInvoker(newInvoker(), newDll(), "B", "x");
  addInvoker(newInvoker(), newDll(), "A", "z");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem",
                      {"~Invoker#3", "~Dll#3", "~Invoker#2", "~Dll#2", "~Invoker#1", "~Dll#1"})});
}

TEST_F(DeletingInvokers, WithoutAnything_DeletesNothing) {
  addInvoker(nullptr, nullptr, "FooIfc", "tcp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {})});
}

/** At level 5 the steps are seen, at 4 only the failure. */
class DeletingOneProxy : public RepositoryTest, public testing::WithParamInterface<int> {
 protected:
  DeletingOneProxy() {
    logLevel(GetParam());
    proxy = newProxy();
    addProxy(proxy, newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
    forget();
  }

  void deleteOne(Proxy* which, std::string interfaceName) {
    sut->deleteOneServiceProxy(which, interfaceName);
  }

  static std::string found() {
    return progress(
        "deleteOneServiceProxy: Proxy found and deleted together with channel, Req and DLL");
  }
  static std::string notFound() { return error("deleteOneServiceProxy: Proxy not found"); }
  static std::string toRemove(const std::string& name) {
    return progress("proxyToRemove: %p", Object{name});
  }

  Proxy* proxy;
};

TEST_P(DeletingOneProxy, DeletesAllItsPartsAndForgetsThem) {
  deleteOne(proxy, "FooIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1",
                                                           "~CommsChannel#1", "~Dll#1", found()})});
  EXPECT_TRUE(sut->proxyMap.empty());
}

TEST_P(DeletingOneProxy, OfAnotherName_DeletesNothingAndSaysSo) {
  deleteOne(proxy, "BarIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {notFound()})});
  EXPECT_EQ(findProxy("FooIfc"), proxy);
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, ThatIsNotRecorded_DeletesNothingAndSaysSo) {
  auto* stranger = keep(newProxy());
  deleteOne(stranger, "FooIfc");
  expectTrace({toRemove("Proxy#2"), locked("proxyMapSem", {notFound()})});
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, ThatIsNull_DeletesNothingAndSaysSo) {
  deleteOne(nullptr, "FooIfc");
  expectTrace({toRemove("null"), locked("proxyMapSem", {notFound()})});
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, ThatIsARecordedNull_DeletesWhatBelongsToIt) {
  addProxy(nullptr, newDll(), newChannel("q"), newRequest("t", ""), "FooIfc");
  forget();
  deleteOne(nullptr, "FooIfc");
  expectTrace({toRemove("null"), locked("proxyMapSem", {"~ProxyRequestImpl#2", "~CommsChannel#2",
                                                        "~Dll#2", found()})});
  EXPECT_EQ(findProxy("FooIfc"), proxy);
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, RecordedUnderTwoNames_TakesTheEntryOfTheName) {
  addProxy(proxy, nullptr, nullptr, nullptr, "BarIfc");
  forget();
  deleteOne(proxy, "FooIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1",
                                                           "~CommsChannel#1", "~Dll#1", found()})});
  ASSERT_EQ(sut->proxyMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.begin()->first, "BarIfc");
}

TEST_P(DeletingOneProxy, RecordedTwiceUnderAName_TakesTheFirstEntryOnly) {
  addProxy(proxy, nullptr, nullptr, nullptr, "FooIfc");
  forget();
  deleteOne(proxy, "FooIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1",
                                                           "~CommsChannel#1", "~Dll#1", found()})});
  ASSERT_EQ(sut->proxyMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.begin()->second.dll, nullptr);
}

TEST_P(DeletingOneProxy, LeavesTheOtherProxiesOfTheName) {
  auto* other = newProxy();
  addProxy(other, newDll(), newChannel("q"), newRequest("t", ""), "FooIfc");
  deleteOne(proxy, "FooIfc");
  EXPECT_EQ(findProxy("FooIfc"), other);
  sut->deleteAllServiceProxies();
}

INSTANTIATE_TEST_SUITE_P(AtLevel, DeletingOneProxy, testing::Values(4, 5));

class DestroyingARepository : public RepositoryTest {};

TEST_F(DestroyingARepository, DestroysTheSemaphoresInReverseAndNothingElse) {
  auto* channel = newChannel("c");
  auto* service = keep(newService());
  auto* dll = keep(newDll());
  sut->addService(service, keep(newExecutor(service, channel)), channel, dll, "FooIfc");
  addProxy(keep(newProxy()), dll, nullptr, keep(newRequest("s", "")), "FooIfc");
  addInvoker(keep(newInvoker()), dll, "FooIfc", "tcp");
  forget();
  sut.reset();
  expectTrace({"~invokerMapSem", "~proxyMapSem", "~svcMapSem"});
}

TEST_F(DestroyingARepository, ThroughItsInterface_IsTheSame) {
  AbstractServiceRepository* repository = sut.release();
  delete repository;
  expectTrace({"~invokerMapSem", "~proxyMapSem", "~svcMapSem"});
}

}  // namespace
}  // namespace zerva::conformance
