#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {
namespace {

using testing::ElementsAre;

class ARepository : public RepositoryTest {
 protected:
  ARepository()
      : service(keep(newService())), channel(keep(newChannel("fooChannel"))), dll(keep(newDll())) {
    auto* executed = newChannel("executed");
    executor = keep(newExecutor(service, executed));
  }

  std::vector<std::string> serviceKeys() const {
    std::vector<std::string> keys;
    for (const auto& [key, data] : sut->svcMap) keys.push_back(key);
    return keys;
  }

  fakes::RecordingService* service;
  CommsChannel* channel;
  Dll* dll;
  ServiceExecutor* executor;
};

TEST_F(ARepository, ThatIsNew_HasThreeFreeSemaphoresAndNoEntries) {
  Platform::nameSemaphores({"svcMapSem", "proxyMapSem", "invokerMapSem"});
  const OpenRepository another;
  expectTrace({"svcMapSem = Semaphore(1, 1, false)", "proxyMapSem = Semaphore(1, 1, false)",
               "invokerMapSem = Semaphore(1, 1, false)"});
  EXPECT_TRUE(another.svcMap.empty());
  EXPECT_TRUE(another.proxyMap.empty());
  EXPECT_TRUE(another.invokerMap.empty());
}

TEST_F(ARepository, Semaphores_GuardTheMapsThatTheyAreNamedAfter) {
  EXPECT_EQ(fakes::Objects::name(&sut->svcMapSem), "svcMapSem");
  EXPECT_EQ(fakes::Objects::name(&sut->proxyMapSem), "proxyMapSem");
  EXPECT_EQ(fakes::Objects::name(&sut->invokerMapSem), "invokerMapSem");
}

TEST_F(ARepository, GivenALegacyService_CutsTheNamesBeforeItLocks) {
  sut->addService(service, dll, "OldIfc OlderIfc");
  expectTrace({"tokenizeString(\"OldIfc OlderIfc\", \" \", true, false)", locked("svcMapSem", {})});
}

TEST_F(ARepository, GivenALegacyService_RecordsItWithoutExecutorAndChannel) {
  sut->addService(service, dll, "OldIfc");
  ASSERT_THAT(serviceKeys(), ElementsAre("OldIfc"));
  const SvcData& data = sut->svcMap.begin()->second;
  EXPECT_EQ(data.service, service);
  EXPECT_EQ(data.executor, nullptr);
  EXPECT_EQ(data.channel, nullptr);
  EXPECT_EQ(data.dll, dll);
}

TEST_F(ARepository, GivenALegacyServiceOfTwoInterfaces_RecordsItUnderEach) {
  sut->addService(service, dll, "OldIfc OlderIfc");
  EXPECT_THAT(serviceKeys(), ElementsAre("OldIfc", "OlderIfc"));
}

TEST_F(ARepository, GivenAService_CutsTheNamesBeforeItLocks) {
  sut->addService(service, executor, channel, dll, "FooIfc FooAdminIfc");
  expectTrace(
      {"tokenizeString(\"FooIfc FooAdminIfc\", \" \", true, false)", locked("svcMapSem", {})});
}

TEST_F(ARepository, GivenAServiceOfTwoInterfaces_RecordsTheSameUnderEach) {
  sut->addService(service, executor, channel, dll, "FooIfc FooAdminIfc");
  ASSERT_THAT(serviceKeys(), ElementsAre("FooAdminIfc", "FooIfc"));
  for (const auto& [key, data] : sut->svcMap) {
    EXPECT_EQ(data.service, service);
    EXPECT_EQ(data.executor, executor);
    EXPECT_EQ(data.channel, channel);
    EXPECT_EQ(data.dll, dll);
  }
}

TEST_F(ARepository, GivenAServiceOfNoInterface_RecordsNothing) {
  sut->addService(service, executor, channel, dll, "");
  sut->addService(service, dll, "");
  EXPECT_THAT(serviceKeys(), ElementsAre());
  expectTrace({"tokenizeString(\"\", \" \", true, false)", locked("svcMapSem", {}),
               "tokenizeString(\"\", \" \", true, false)", locked("svcMapSem", {})});
}

TEST_F(ARepository, GivenATrailingBlank_RecordsNothingUnderAnEmptyName) {
  sut->addService(service, dll, "OldIfc ");
  EXPECT_THAT(serviceKeys(), ElementsAre("OldIfc"));
}

TEST_F(ARepository, GivenRunsOfBlanks_RecordsNothingUnderAnEmptyName) {
  sut->addService(service, executor, channel, dll, " A  B ");
  EXPECT_THAT(serviceKeys(), ElementsAre("A", "B"));
}

TEST_F(ARepository, OnAPlatformThatLeavesEmptyPieces_RecordsNothingUnderAnEmptyName) {
  Platform::answer("tokenizeString(", 0);
  sut->addService(service, dll, "A  B ");
  sut->addService(service, executor, channel, dll, " C  D");
  EXPECT_EQ(sut->svcMap.size(), 4u);
  EXPECT_EQ(sut->svcMap.count(""), 0u);
}

TEST_F(ARepository, GivenAServiceTwice_KeepsBothEntriesInTheOrderOfAdding) {
  auto* younger = keep(newService());
  sut->addService(service, executor, channel, dll, "FooIfc");
  sut->addService(younger, dll, "FooIfc");
  ASSERT_THAT(serviceKeys(), ElementsAre("FooIfc", "FooIfc"));
  EXPECT_EQ(sut->svcMap.begin()->second.service, service);
  EXPECT_EQ(std::next(sut->svcMap.begin())->second.service, younger);
}

TEST_F(ARepository, GivenTheSameServiceAndNameTwice_RecordsItTwice) {
  sut->addService(service, dll, "FooIfc FooIfc");
  EXPECT_THAT(serviceKeys(), ElementsAre("FooIfc", "FooIfc"));
}

TEST_F(ARepository, GivenNullPointers_RecordsThem) {
  sut->addService(nullptr, nullptr, nullptr, nullptr, "FooIfc");
  ASSERT_THAT(serviceKeys(), ElementsAre("FooIfc"));
  EXPECT_EQ(sut->svcMap.begin()->second.service, nullptr);
}

TEST_F(ARepository, Names_AreInByteOrder) {
  sut->addService(service, dll, "b B a \xc3\xa4");
  EXPECT_THAT(serviceKeys(), ElementsAre("B", "a", "b", "\xc3\xa4"));
}

TEST_F(ARepository, GivenAProxy_RecordsAllItsPartsWhileItLocks) {
  auto* proxy = keep(newProxy());
  auto* request = keep(newRequest("/svc/a", ""));
  addProxy(proxy, dll, channel, request, "FooIfc");
  expectTrace({locked("proxyMapSem", {})});
  ASSERT_EQ(sut->proxyMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.begin()->first, "FooIfc");
  const SvcProxyData& data = sut->proxyMap.begin()->second;
  EXPECT_EQ(data.proxy, proxy);
  EXPECT_EQ(data.dll, dll);
  EXPECT_EQ(data.request, request);
  EXPECT_EQ(data.channel, channel);
}

// Whoever has the semaphore may write into the caller's text meanwhile.
TEST_F(ARepository, GivenAProxy_LocksBeforeItCopiesTheName) {
  std::string ifc = "FooIfc";
  Platform::once("proxyMapSem.take(", [&ifc] { ifc = "changed"; });
  sut->addServiceProxy(nullptr, nullptr, nullptr, nullptr, ifc);
  ASSERT_EQ(sut->proxyMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.begin()->first, "changed");
}

TEST_F(ARepository, GivenAProxyOfANameWithABlank_RecordsItUnderTheWholeName) {
  addProxy(nullptr, nullptr, nullptr, nullptr, "Foo Ifc");
  EXPECT_EQ(sut->proxyMap.begin()->first, "Foo Ifc");
}

TEST_F(ARepository, GivenTwoProxiesOfOneInterface_KeepsTheOlderFirst) {
  auto* older = keep(newProxy());
  auto* younger = keep(newProxy());
  addProxy(older, dll, channel, nullptr, "FooIfc");
  addProxy(younger, dll, channel, nullptr, "FooIfc");
  ASSERT_EQ(sut->proxyMap.size(), 2u);
  EXPECT_EQ(sut->proxyMap.begin()->second.proxy, older);
}

TEST_F(ARepository, GivenAnInvoker_RecordsItUnderInterfaceAndProtocol) {
  auto* invoker = keep(newInvoker());
  addInvoker(invoker, dll, "Ifc", "proto");
  expectTrace({locked("invokerMapSem", {})});
  ASSERT_EQ(sut->invokerMap.size(), 1u);
  EXPECT_EQ(sut->invokerMap.begin()->first, "Ifc,proto");
  EXPECT_EQ(sut->invokerMap.begin()->second.invoker, invoker);
  EXPECT_EQ(sut->invokerMap.begin()->second.dll, dll);
}

TEST_F(ARepository, GivenAnInvoker_CopiesTheTextsBeforeItLocks) {
  std::string ifc = "Ifc";
  std::string protocol = "proto";
  Platform::once("invokerMapSem.take(", [&] { ifc = protocol = "changed"; });
  sut->addServiceInvoker(nullptr, nullptr, ifc, protocol);
  ASSERT_EQ(sut->invokerMap.size(), 1u);
  EXPECT_EQ(sut->invokerMap.begin()->first, "Ifc,proto");
  EXPECT_EQ(protocol, "changed");
}

TEST_F(ARepository, GivenAnInvokerOfANameWithAComma_DoesNotEscapeIt) {
  addInvoker(nullptr, nullptr, "If,c", "proto");
  EXPECT_EQ(sut->invokerMap.begin()->first, "If,c,proto");
}

TEST_F(ARepository, GivenOneInvokerTwice_RecordsItTwice) {
  auto* invoker = keep(newInvoker());
  addInvoker(invoker, dll, "Ifc", "proto");
  addInvoker(invoker, dll, "Ifc", "proto");
  EXPECT_EQ(sut->invokerMap.size(), 2u);
}

}  // namespace
}  // namespace zerva::conformance
