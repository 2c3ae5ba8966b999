#include <stdexcept>

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

/** A call that may throw while all services are shut down. */
class AThrowingCall : public RepositoryTest, public testing::WithParamInterface<const char*> {};

TEST_P(AThrowingCall, InShuttingServicesDown_LeavesTheSemaphoreFree) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, newDll(), "FooIfc");
  Platform::once(GetParam(), [] { throw std::runtime_error("not now"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { sut->shutdownAllServices(); }), "not now");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  sut->shutdownAllServices();
  sut->deleteAllServices();
}

INSTANTIATE_TEST_SUITE_P(OfAnyKind, AThrowingCall,
                         testing::Values("ServiceExecutor#1.shutdown(", "Service#1.stop("));

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

// The same object may stand in entries that have nothing else in common.

TEST_F(DeletingServices, OfOneServiceInDifferentEntries_DeletesItAtItsFirst) {
  auto* service = newService();
  for (const char* name : {"A", "B"}) {
    auto* channel = newChannel(name);
    sut->addService(service, newExecutor(service, channel), channel, newDll(), name);
  }
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {"~ServiceExecutor#1", "Service#1.waitForThreadCompletion()",
                                    "~Service#1", "~Dll#1", "~ServiceExecutor#2", "~Dll#2"})});
}

TEST_F(DeletingServices, OfOneExecutorInDifferentEntries_DeletesItAtItsFirst) {
  auto* channel = newChannel("c");
  auto* executor = newExecutor(nullptr, channel);
  for (const char* name : {"A", "B"}) {
    sut->addService(newService(), executor, channel, newDll(), name);
  }
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem",
                      {"~ServiceExecutor#1", "Service#1.waitForThreadCompletion()", "~Service#1",
                       "~Dll#1", "Service#2.waitForThreadCompletion()", "~Service#2", "~Dll#2"})});
}

TEST_F(DeletingServices, WithoutALibrary_DeletesWhatIsThere) {
  auto* service = newService();
  auto* channel = newChannel("c");
  sut->addService(service, newExecutor(service, channel), channel, nullptr, "FooIfc");
  forget();
  sut->deleteAllServices();
  expectTrace({locked(
      "svcMapSem", {"~ServiceExecutor#1", "Service#1.waitForThreadCompletion()", "~Service#1"})});
}

TEST_F(DeletingServices, WithoutAnExecutor_DeletesWhatIsThere) {
  auto* channel = keep(newChannel("c"));
  sut->addService(newService(), nullptr, channel, newDll(), "FooIfc");
  forget();
  sut->deleteAllServices();
  expectTrace(
      {locked("svcMapSem", {"Service#1.waitForThreadCompletion()", "~Service#1", "~Dll#1"})});
}

TEST_F(DeletingServices, LeavesProxiesAndInvokersAlone) {
  addProxy(newProxy(), newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
  addInvoker(newInvoker(), newDll(), "FooIfc", "tcp");
  forget();
  sut->deleteAllServices();
  expectTrace({locked("svcMapSem", {})});
  sut->deleteAllServiceProxies();
  sut->deleteAllServiceInvokers();
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

class DeletingInvokers : public RepositoryTest {};

TEST_F(DeletingInvokers, OfOneInvokerInDifferentEntries_DeletesItAtItsFirst) {
  Invoker* invoker = newInvoker();
  addInvoker(invoker, newDll(), "FooIfc", "tcp");
  addInvoker(invoker, newDll(), "FooIfc", "udp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {"~Invoker#1", "~Dll#1", "~Dll#2"})});
}

TEST_F(DeletingInvokers, OfOneLibraryInDifferentEntries_DeletesItAtItsFirst) {
  Dll* dll = newDll();
  addInvoker(newInvoker(), dll, "FooIfc", "tcp");
  addInvoker(newInvoker(), dll, "FooIfc", "udp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {"~Invoker#1", "~Dll#1", "~Invoker#2"})});
}

TEST_F(DeletingInvokers, WithoutAnInvoker_DeletesTheLibrary) {
  addInvoker(nullptr, newDll(), "FooIfc", "tcp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {"~Dll#1"})});
}

TEST_F(DeletingInvokers, WithoutALibrary_DeletesTheInvoker) {
  addInvoker(newInvoker(), nullptr, "FooIfc", "tcp");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {"~Invoker#1"})});
}

TEST_F(DeletingInvokers, LeavesARepositoryThatCanBeFilledAgain) {
  addInvoker(newInvoker(), newDll(), "FooIfc", "tcp");
  sut->deleteAllServiceInvokers();
  Invoker* invoker = newInvoker();
  addInvoker(invoker, newDll(), "FooIfc", "tcp");
  EXPECT_EQ(findInvoker("FooIfc", "tcp"), invoker);
  sut->deleteAllServiceInvokers();
}

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

TEST_F(DeletingInvokers, LeavesServicesAndProxiesAlone) {
  sut->addService(newService(), newDll(), "FooIfc");
  addProxy(newProxy(), newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
  forget();
  sut->deleteAllServiceInvokers();
  expectTrace({locked("invokerMapSem", {})});
  EXPECT_EQ(sut->svcMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.size(), 1u);
  sut->deleteAllServices();
  sut->deleteAllServiceProxies();
}

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

TEST_F(DestroyingARepository, AfterItsDeletions_DeletesNothingMore) {
  sut->addService(newService(), newDll(), "FooIfc");
  addProxy(newProxy(), newDll(), nullptr, nullptr, "FooIfc");
  addInvoker(newInvoker(), newDll(), "FooIfc", "tcp");
  sut->deleteAllServices();
  sut->deleteAllServiceProxies();
  sut->deleteAllServiceInvokers();
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
