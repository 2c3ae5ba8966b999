#include <algorithm>
#include <stdexcept>

#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {
namespace {

/** Lets a call throw once. */
void failOnce(const std::string& call) {
  Platform::once(call, [] { throw std::runtime_error("it is gone"); });
}

/** What a lookup throws passes, and leaves no semaphore taken. */
template <class Lookup>
void expectToPass(const Lookup& lookup) {
  EXPECT_EQ(messageOf<std::runtime_error>(lookup), "it is gone");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
}

class FindingAService : public RepositoryTest {
 protected:
  FindingAService()
      : onA(keep(newService())),
        onB(keep(newService())),
        channelA(keep(newChannel("A"))),
        channelB(keep(newChannel("B"))) {
    sut->addService(onA, nullptr, channelA, nullptr, "FooIfc");
    sut->addService(onB, nullptr, channelB, nullptr, "FooIfc BarIfc");
    forget();
  }

  fakes::RecordingService* onA;
  fakes::RecordingService* onB;
  CommsChannel* channelA;
  CommsChannel* channelB;
};

TEST_F(FindingAService, ByNameAlone_GivesTheOldestWithoutLookingAtItsChannel) {
  EXPECT_EQ(findService("FooIfc", ""), onA);
  expectTrace({locked("svcMapSem", {})});
}

TEST_F(FindingAService, ByChannel_GivesTheOneOnThatChannel) {
  EXPECT_EQ(findService("FooIfc", "B"), onB);
  expectTrace({locked("svcMapSem", {"CommsChannel#1.getName()", "CommsChannel#2.getName()"})});
}

TEST_F(FindingAService, ByTheFirstChannel_LooksNoFurther) {
  EXPECT_EQ(findService("FooIfc", "A"), onA);
  expectTrace({locked("svcMapSem", {"CommsChannel#1.getName()"})});
}

TEST_F(FindingAService, ByAThirdChannel_GivesNull) {
  EXPECT_EQ(findService("FooIfc", "C"), nullptr);
  expectTrace({locked("svcMapSem", {"CommsChannel#1.getName()", "CommsChannel#2.getName()"})});
}

TEST_F(FindingAService, ByAnUnknownName_GivesNullAndReadsNoChannel) {
  EXPECT_EQ(findService("BazIfc", "A"), nullptr);
  expectTrace({locked("svcMapSem", {})});
}

TEST_F(FindingAService, ByANameInOtherCase_GivesNull) {
  EXPECT_EQ(findService("fooifc", ""), nullptr);
  EXPECT_EQ(findService("FooIf", ""), nullptr);
  EXPECT_EQ(findService("FooIfcc", ""), nullptr);
}

TEST_F(FindingAService, ByAChannelNameInOtherCase_GivesNull) {
  EXPECT_EQ(findService("FooIfc", "a"), nullptr);
  EXPECT_EQ(findService("FooIfc", "A "), nullptr);
}

TEST_F(FindingAService, ThatHasNoChannelByChannel_PassesItOver) {
  auto* legacy = keep(newService());
  sut->addService(legacy, nullptr, "OldIfc");
  sut->addService(onB, nullptr, channelB, nullptr, "OldIfc");
  EXPECT_EQ(findService("OldIfc", ""), legacy);
  EXPECT_EQ(findService("OldIfc", "B"), onB);
  EXPECT_EQ(findService("OldIfc", "C"), nullptr);
}

TEST_F(FindingAService, WhoseOldestIsNull_GivesNull) {
  sut->addService(nullptr, nullptr, channelB, nullptr, "BazIfc");
  sut->addService(onB, nullptr, channelB, nullptr, "BazIfc");
  EXPECT_EQ(findService("BazIfc", ""), nullptr);
  EXPECT_EQ(findService("BazIfc", "B"), nullptr);
}

TEST_F(FindingAService, OnAChannelWhoseNameCannotBeRead_LeavesTheSemaphoreFree) {
  failOnce("CommsChannel#1.getName(");
  expectToPass([this] { findService("FooIfc", "A"); });
  EXPECT_EQ(findService("FooIfc", "A"), onA);
}

class FindingAProxy : public RepositoryTest {
 protected:
  FindingAProxy()
      : plain(keep(newProxy())),
        qualified(keep(newProxy())),
        onB(keep(newProxy())),
        plainRequest(keep(newRequest("/svc/a", ""))),
        qualifiedRequest(keep(newRequest("/svc/a", "second"))),
        requestToB(keep(newRequest("/svc/b", ""))) {
    addProxy(plain, nullptr, nullptr, plainRequest, "FooIfc");
    addProxy(qualified, nullptr, nullptr, qualifiedRequest, "FooIfc");
    addProxy(onB, nullptr, nullptr, requestToB, "FooIfc");
    forget();
  }

  fakes::RecordingProxy* plain;
  fakes::RecordingProxy* qualified;
  fakes::RecordingProxy* onB;
  ProxyRequestImpl* plainRequest;
  ProxyRequestImpl* qualifiedRequest;
  ProxyRequestImpl* requestToB;
};

TEST_F(FindingAProxy, ByName_GivesTheOldestWithoutLookingAtItsRequest) {
  EXPECT_EQ(findProxy("FooIfc"), plain);
  expectTrace({locked("proxyMapSem", {})});
}

TEST_F(FindingAProxy, ByAnUnknownName_GivesNull) {
  EXPECT_EQ(findProxy("BarIfc"), nullptr);
  EXPECT_EQ(findProxy("FooIfcc"), nullptr);
  EXPECT_EQ(findProxy("FooIf"), nullptr);
  EXPECT_EQ(findProxy("fooIfc"), nullptr);
}

TEST_F(FindingAProxy, InAnEmptyRepository_GivesNull) {
  OpenRepository empty;
  std::string name = "FooIfc";
  EXPECT_EQ(empty.findServiceProxy(name), nullptr);
}

// What lies behind the map of the proxies reads as an entry of an empty name, in memory of zeros
// and with an invoker in the next map.
TEST_F(FindingAProxy, ByAnEmptyNameWhereOnlyInvokersAre_GivesNull) {
  alignas(OpenRepository) unsigned char memory[sizeof(OpenRepository)];
  std::fill_n(static_cast<volatile unsigned char*>(memory), sizeof memory, 0);
  auto* other = new (memory) OpenRepository;
  std::string ifc = "FooIfc";
  std::string protocol = "tcp";
  other->addServiceInvoker(nullptr, nullptr, ifc, protocol);
  std::string none;
  EXPECT_EQ(other->findServiceProxy(none), nullptr);
  other->~OpenRepository();
}

TEST_F(FindingAProxy, ByChannelAndQualifier_ReadsTheQualifierOnlyWhereTheChannelIsRight) {
  EXPECT_EQ(findProxy("FooIfc", "/svc/b", ""), onB);
  expectTrace({locked(
      "proxyMapSem", {"ProxyRequestImpl#1.getSvcChannel()", "ProxyRequestImpl#2.getSvcChannel()",
                      "ProxyRequestImpl#3.getSvcChannel()", "ProxyRequestImpl#3.getQualifier()"})});
}

TEST_F(FindingAProxy, ByQualifier_GivesTheOneWithTheQualifier) {
  EXPECT_EQ(findProxy("FooIfc", "/svc/a", "second"), qualified);
  expectTrace({locked(
      "proxyMapSem", {"ProxyRequestImpl#1.getSvcChannel()", "ProxyRequestImpl#1.getQualifier()",
                      "ProxyRequestImpl#2.getSvcChannel()", "ProxyRequestImpl#2.getQualifier()"})});
}

TEST_F(FindingAProxy, ByAnEmptyQualifier_GivesTheOneWithAnEmptyQualifierOnly) {
  EXPECT_EQ(findProxy("FooIfc", "/svc/a", ""), plain);
  addProxy(qualified, nullptr, nullptr, qualifiedRequest, "BarIfc");
  EXPECT_EQ(findProxy("BarIfc", "/svc/a", ""), nullptr);
}

TEST_F(FindingAProxy, ByAnEmptyChannel_MatchesNoOtherChannel) {
  EXPECT_EQ(findProxy("FooIfc", "", ""), nullptr);
}

TEST_F(FindingAProxy, ByAnEmptyChannel_MatchesAnEmptyOne) {
  auto* request = keep(newRequest("", ""));
  addProxy(onB, nullptr, nullptr, request, "BarIfc");
  EXPECT_EQ(findProxy("BarIfc", "", ""), onB);
}

TEST_F(FindingAProxy, ByChannelInOtherCase_GivesNull) {
  EXPECT_EQ(findProxy("FooIfc", "/SVC/a", ""), nullptr);
  EXPECT_EQ(findProxy("FooIfc", "/svc/a", "Second"), nullptr);
}

TEST_F(FindingAProxy, ByAnUnknownNameAndChannel_GivesNullAndReadsNoRequest) {
  EXPECT_EQ(findProxy("BarIfc", "/svc/a", ""), nullptr);
  expectTrace({locked("proxyMapSem", {})});
}

TEST_F(FindingAProxy, ThatHasNoRequestByChannel_PassesItOver) {
  addProxy(plain, nullptr, nullptr, nullptr, "BarIfc");
  addProxy(onB, nullptr, nullptr, requestToB, "BarIfc");
  EXPECT_EQ(findProxy("BarIfc", "/svc/b", ""), onB);
}

TEST_F(FindingAProxy, WhoseOldestIsNull_GivesNull) {
  addProxy(nullptr, nullptr, nullptr, requestToB, "BarIfc");
  addProxy(onB, nullptr, nullptr, requestToB, "BarIfc");
  EXPECT_EQ(findProxy("BarIfc"), nullptr);
  EXPECT_EQ(findProxy("BarIfc", "/svc/b", ""), nullptr);
}

TEST_F(FindingAProxy, WhoseRequestsChannelCannotBeRead_LeavesTheSemaphoreFree) {
  failOnce("ProxyRequestImpl#1.getSvcChannel(");
  expectToPass([this] { findProxy("FooIfc", "/svc/a", ""); });
  EXPECT_EQ(findProxy("FooIfc", "/svc/a", ""), plain);
}

TEST_F(FindingAProxy, WhoseRequestsQualifierCannotBeRead_LeavesTheSemaphoreFree) {
  failOnce("ProxyRequestImpl#1.getQualifier(");
  expectToPass([this] { findProxy("FooIfc", "/svc/a", ""); });
  EXPECT_EQ(findProxy("FooIfc", "/svc/a", ""), plain);
}

class FindingAnInvoker : public RepositoryTest {
 protected:
  FindingAnInvoker() : invoker(keep(newInvoker())) {
    addInvoker(invoker, nullptr, "FooIfc", "tcp");
    forget();
  }

  fakes::RecordingInvoker* invoker;
};

TEST_F(FindingAnInvoker, ByInterfaceAndProtocol_GivesIt) {
  EXPECT_EQ(findInvoker("FooIfc", "tcp"), invoker);
  expectTrace({locked("invokerMapSem", {})});
}

TEST_F(FindingAnInvoker, ByAnyOtherPair_GivesNull) {
  EXPECT_EQ(findInvoker("FooIfc", "TCP"), nullptr);
  EXPECT_EQ(findInvoker("FooIfc", "udp"), nullptr);
  EXPECT_EQ(findInvoker("FooIfc", ""), nullptr);
  EXPECT_EQ(findInvoker("FooIfc", "tc"), nullptr);
  EXPECT_EQ(findInvoker("BarIfc", "tcp"), nullptr);
  EXPECT_EQ(findInvoker("", "tcp"), nullptr);
}

TEST_F(FindingAnInvoker, RecordedTwiceForAPair_GivesTheOlder) {
  addInvoker(keep(newInvoker()), nullptr, "FooIfc", "tcp");
  EXPECT_EQ(findInvoker("FooIfc", "tcp"), invoker);
}

TEST_F(FindingAnInvoker, WhoseOldestIsNull_GivesNull) {
  addInvoker(nullptr, nullptr, "FooIfc", "udp");
  addInvoker(keep(newInvoker()), nullptr, "FooIfc", "udp");
  EXPECT_EQ(findInvoker("FooIfc", "udp"), nullptr);
}

// Whoever has the semaphore may write into the caller's texts meanwhile.
TEST_F(FindingAnInvoker, WhileItWaitsForTheSemaphore_HasReadTheTexts) {
  std::string ifc = "FooIfc";
  std::string protocol = "tcp";
  Platform::once("invokerMapSem.take(", [&] { ifc = protocol = "changed"; });
  EXPECT_EQ(sut->findServiceInvoker(ifc, protocol), invoker);
  EXPECT_EQ(protocol, "changed");
}

class AskingAboutAService : public RepositoryTest {
 protected:
  AskingAboutAService()
      : service(keep(newService())),
        legacy(keep(newService())),
        stranger(keep(newService())),
        channel(keep(newChannel("fooChannel"))),
        other(keep(newChannel("otherChannel"))) {
    sut->addService(service, nullptr, channel, nullptr, "FooIfc");
    sut->addService(legacy, nullptr, "OldIfc");
    forget();
  }

  fakes::RecordingService* service;
  fakes::RecordingService* legacy;
  fakes::RecordingService* stranger;
  CommsChannel* channel;
  CommsChannel* other;
};

TEST_F(AskingAboutAService, ForItsChannel_GivesTheChannelsName) {
  EXPECT_EQ(sut->findSvcChannel(service), "fooChannel");
  expectTrace({locked("svcMapSem", {"CommsChannel#1.getName()"})});
}

TEST_F(AskingAboutAService, ForTheChannelOfALegacyOne_GivesAnEmptyName) {
  EXPECT_EQ(sut->findSvcChannel(legacy), "");
  expectTrace({locked("svcMapSem", {})});
}

TEST_F(AskingAboutAService, ForTheChannelOfAnUnknownOne_GivesAnEmptyName) {
  EXPECT_EQ(sut->findSvcChannel(stranger), "");
  expectTrace({locked("svcMapSem", {})});
}

TEST_F(AskingAboutAService, ForTheChannelOfNull_GivesAnEmptyName) {
  EXPECT_EQ(sut->findSvcChannel(nullptr), "");
}

TEST_F(AskingAboutAService, ForTheChannelOfARecordedNull_GivesItsChannel) {
  sut->addService(nullptr, nullptr, other, nullptr, "NullIfc");
  EXPECT_EQ(sut->findSvcChannel(nullptr), "otherChannel");
}

TEST_F(AskingAboutAService, ForTheChannelOfOneWithTwoEntries_LooksAtTheFirstNameOnly) {
  // The entry that comes first has no channel; the second one is not asked.
  sut->addService(stranger, nullptr, other, nullptr, "B");
  sut->addService(stranger, nullptr, "A");
  EXPECT_EQ(sut->findSvcChannel(stranger), "");
}

TEST_F(AskingAboutAService, ForAChannelWhoseNameCannotBeRead_LeavesTheSemaphoreFree) {
  failOnce("CommsChannel#1.getName(");
  expectToPass([this] { sut->findSvcChannel(service); });
  EXPECT_EQ(sut->findSvcChannel(service), "fooChannel");
}

TEST_F(AskingAboutAService, WhetherItIsThere_KnowsAllEntries) {
  sut->addService(stranger, nullptr, "FooIfc ZooIfc");
  EXPECT_TRUE(sut->containsService(service));
  EXPECT_TRUE(sut->containsService(legacy));
  EXPECT_TRUE(sut->containsService(stranger));
}

TEST_F(AskingAboutAService, WhetherAnUnknownOneIsThere_GivesFalse) {
  EXPECT_FALSE(sut->containsService(stranger));
  EXPECT_FALSE(sut->containsService(nullptr));
  expectTrace({locked("svcMapSem", {}), locked("svcMapSem", {})});
}

TEST_F(AskingAboutAService, WhetherARecordedNullIsThere_GivesTrue) {
  sut->addService(nullptr, nullptr, "NullIfc");
  EXPECT_TRUE(sut->containsService(nullptr));
}

TEST_F(AskingAboutAService, ForItsRecord_GivesTheOneInTheMap) {
  EXPECT_EQ(sut->getServiceData(service), &sut->svcMap.find("FooIfc")->second);
  expectTrace({locked("svcMapSem", {})});
}

TEST_F(AskingAboutAService, ForTheRecordOfOneWithTwoNames_GivesTheFirstInTheOrderOfNames) {
  sut->addService(stranger, nullptr, other, nullptr, "ZooIfc");
  sut->addService(stranger, nullptr, channel, nullptr, "AppleIfc");
  EXPECT_EQ(sut->getServiceData(stranger), &sut->svcMap.find("AppleIfc")->second);
}

TEST_F(AskingAboutAService, ForTheRecordOfAnUnknownOne_GivesNull) {
  EXPECT_EQ(sut->getServiceData(stranger), nullptr);
  EXPECT_EQ(sut->getServiceData(nullptr), nullptr);
}

TEST_F(AskingAboutAService, ForTheRecordOfARecordedNull_GivesIt) {
  sut->addService(nullptr, nullptr, other, nullptr, "NullIfc");
  ASSERT_NE(sut->getServiceData(nullptr), nullptr);
  EXPECT_EQ(sut->getServiceData(nullptr)->channel, other);
}

}  // namespace
}  // namespace zerva::conformance
