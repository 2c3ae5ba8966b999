#include <algorithm>
#include <stdexcept>

#include "tests/conformance/ProxyLookupTest.h"

namespace zerva::conformance {
namespace {

/** At level 5 the progress is seen, at 4 it is not. */
class MakingAProxy : public ProxyLookup, public testing::WithParamInterface<int> {
 protected:
  MakingAProxy() { logLevel(GetParam()); }

  Proxy* init(OpenConfigurator& configurator, std::string svcChannel = "/svc/a") {
    std::string lib = "libA.so";
    std::string creator = "createA";
    std::string ifc = "FooIfc";
    std::string qualifier;
    return configurator.initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
  }
};

TEST_P(MakingAProxy, DoesEverythingUnderItsSemaphore) {
  offerProxy("libA.so", "createA");
  Proxy* proxy = init(*plain);
  expectTrace({made("Proxy#1")});
  EXPECT_EQ(fakes::Objects::name(proxy), "Proxy#1");
}

TEST_P(MakingAProxy, WhoseLibraryIsMissing_IsReportedAndLeavesTheSemaphoreFree) {
  Platform::library("libA.so").error = "cannot open it";
  EXPECT_EQ(init(*plain), nullptr);
  expectTrace({locked(
      "proxySem",
      {discovered(), "Dll#1 = Dll(\"libA.so\")", "Dll#1.error() -> \"cannot open it\"",
       error("ServiceConfigurator::initProxyAndAddToRepository() failed on opening Dll (%s) "
             "error: '%s'",
             "libA.so", "cannot open it"),
       printed("ServiceConfigurator::initProxyAndAddToRepository() failed on opening Dll (libA.so) "
               "error: 'cannot open it'"),
       "~Dll#1"})});
}

TEST_P(MakingAProxy, WhoseCreatorIsMissing_IsReportedAndLeavesTheSemaphoreFree) {
  offerProxy("libA.so", "createA");
  Platform::library("libA.so").symbols["createA"].error = "no symbol";
  EXPECT_EQ(init(*plain), nullptr);
  expectTrace({locked(
      "proxySem",
      {discovered(), opened("Dll#1", "libA.so"), "Dll#1.symbol(\"createA\")",
       "Dll#1.error() -> \"no symbol\"",
       error("ServiceConfigurator::initProxyAndAddToRepository() failed on fetching symbol (%s) "
             "from (%s) error: '%s'",
             "createA", "libA.so", "no symbol"),
       printed("ServiceConfigurator::initProxyAndAddToRepository() failed on fetching symbol "
               "(createA) from (libA.so) error: 'no symbol'"),
       "~Dll#1"})});
}

TEST_P(MakingAProxy, AfterAFailure_CanBeTriedAgain) {
  EXPECT_EQ(init(*plain), nullptr);
  offerProxy("libA.so", "createA");
  EXPECT_NE(init(*plain), nullptr);
}

/** The two kinds of configurators that have none. */
class WithoutAProtocolRepository : public MakingAProxy {
 protected:
  /** Making a proxy says once that it cannot be made, and does nothing else. */
  void expectReportedBeforeAnythingIsMade(OpenConfigurator& bare) {
    offerProxy("libA.so", "createA");
    EXPECT_EQ(init(bare), nullptr);
    const Lines lines = Trace::lines();
    ASSERT_EQ(lines.size(), 3u) << asText(lines);
    EXPECT_EQ(lines[0], "proxySem.take(-1)");
    EXPECT_THAT(lines[1],
                testing::StartsWith("log(\"Service Config\", \"src/ServiceConfigurator\", 2, "));
    EXPECT_THAT(lines[1], testing::EndsWith(" [proxySem]"));
    EXPECT_EQ(lines[2], "proxySem.give() [proxySem]");
    std::string ifc = "FooIfc";
    EXPECT_EQ(inner.findServiceProxy(ifc), nullptr);
  }
};

TEST_P(WithoutAProtocolRepository, OfChannelAndRepository_IsReportedBeforeAnythingIsMade) {
  const auto bare = make<OpenConfigurator>(&channel, &repository);
  expectReportedBeforeAnythingIsMade(*bare);
}

TEST_P(WithoutAProtocolRepository, WithAChannelDispatcher_IsReportedBeforeAnythingIsMade) {
  const auto bare = make<OpenConfigurator>(&channel, &repository, &interceptors);
  expectReportedBeforeAnythingIsMade(*bare);
}

TEST_P(WithoutAProtocolRepository, SaysForWhichInterfaceNoProxyCanBeMade) {
  const auto bare = make<OpenConfigurator>(&channel, &repository);
  init(*bare);
  expectTrace(
      {locked("proxySem", {error("ServiceConfigurator::initProxyAndAddToRepository() no Protocol "
                                 "Repository, cannot make proxy for interface:'%s'",
                                 "FooIfc")})});
}

TEST_P(WithoutAProtocolRepository, WhatTheRegistryKnows_IsNotFound) {
  Platform::reply("find:FooIfc,host", "found:/svc/a");
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  const auto bare = make<OpenConfigurator>(&channel, &repository, &interceptors);
  std::string ifc = "FooIfc";
  std::string svcChannel = "/svc/a";
  EXPECT_EQ(bare->findService(ifc), nullptr);
  EXPECT_EQ(bare->findProxy(ifc, svcChannel), nullptr);
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(AtLevel, WithoutAProtocolRepository, testing::Values(4, 5));

TEST_P(MakingAProxy, OfAnUnknownProtocol_HandsANullAdapterOn) {
  fakes::RecordingProtocols none;
  const auto other =
      make<OpenConfigurator>(&channel, &repository, &none, &interceptors, &invokeInterceptors);
  offerProxy("libA.so", "createA");
  EXPECT_NE(init(*other), nullptr);
  EXPECT_THAT(Trace::lines(),
              testing::Contains(testing::HasSubstr("\"zerva_simple_rmi\", null, \"\"")));
}

INSTANTIATE_TEST_SUITE_P(AtLevel, MakingAProxy, testing::Values(4, 5));

/** Where an exception comes from, and what it leaves behind. */
struct Thrower {
  const char* name;
  /** The call that throws. */
  const char* call;
  std::vector<std::string> left;
};

class AnExceptionInMakingAProxy : public ProxyLookup, public testing::WithParamInterface<Thrower> {
 protected:
  AnExceptionInMakingAProxy() {
    known = recordProxy("KnownIfc", "/svc/known", "");
    fakes::Objects::renumber();
    offerProxy("libA.so", "createA");
    Platform::once(GetParam().call, [] { throw std::runtime_error("thrown here"); });
    for (const std::string& name : GetParam().left) leaves(name);
  }

  // The semaphore is taken for good.
  ~AnExceptionInMakingAProxy() override { fakes::SemaphoreTable::clear(); }

  Proxy* make() {
    std::string lib = "libA.so";
    std::string creator = "createA";
    std::string svcChannel = "/svc/a";
    std::string ifc = "FooIfc";
    std::string qualifier;
    return plain->initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
  }

  Proxy* known;
};

TEST_P(AnExceptionInMakingAProxy, PassesAndLeavesTheSemaphoreTaken) {
  EXPECT_EQ(messageOf<std::runtime_error>([this] { make(); }), "thrown here");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::ElementsAre("proxySem"));
  std::string ifc = "FooIfc";
  EXPECT_EQ(inner.findServiceProxy(ifc), nullptr);
}

TEST_P(AnExceptionInMakingAProxy, BlocksEveryLaterOne) {
  EXPECT_THROW(make(), std::runtime_error);
  EXPECT_EQ(messageOf<std::logic_error>([this] { make(); }), "waits for ever: proxySem");
}

TEST_P(AnExceptionInMakingAProxy, BlocksEveryLaterRemoval) {
  EXPECT_THROW(make(), std::runtime_error);
  std::string ifc = "KnownIfc";
  EXPECT_EQ(
      messageOf<std::logic_error>([&] { plain->removeAndDeleteProxyFromRepository(known, ifc); }),
      "waits for ever: proxySem");
  EXPECT_TRUE(fakes::Objects::isAlive(known));
}

TEST_P(AnExceptionInMakingAProxy, StillFindsWhatIsRecorded) {
  EXPECT_THROW(make(), std::runtime_error);
  EXPECT_EQ(plain->findService("KnownIfc"), known);
}

INSTANTIATE_TEST_SUITE_P(
    From, AnExceptionInMakingAProxy,
    testing::Values(
        Thrower{"Library", "Dll#1 = ", {}}, Thrower{"Symbol", "Dll#1.symbol(", {"Dll#1"}},
        Thrower{"Creator", "createA()", {"Dll#1"}},
        Thrower{"Channel", "CommsChannel#1 = ", {"Dll#1", "Proxy#1"}},
        Thrower{
            "Adapter", "protocols.findProtocolAdapter(", {"Dll#1", "Proxy#1", "CommsChannel#1"}},
        Thrower{"Request", "ProxyRequestImpl#1 = ", {"Dll#1", "Proxy#1", "CommsChannel#1"}},
        Thrower{"Proxy",
                "Proxy#1.initialise(",
                {"Dll#1", "Proxy#1", "CommsChannel#1", "ProxyRequestImpl#1"}},
        Thrower{"Repository",
                "repository.addServiceProxy(",
                {"Dll#1", "Proxy#1", "CommsChannel#1", "ProxyRequestImpl#1"}}),
    [](const auto& each) { return std::string(each.param.name); });

/** A moment, and how it is seen in a channel's name. */
struct Moment {
  std::int64_t seconds;
  std::int64_t microseconds;
  const char* suffix;
};

class TheNameOfAProxysChannel : public ProxyLookup, public testing::WithParamInterface<Moment> {
 protected:
  std::string nameFor(const std::string& channelName) {
    offerProxy("libA.so", "createA");
    std::string svcChannel = channelName;
    std::string lib = "libA.so";
    std::string creator = "createA";
    std::string ifc = "FooIfc";
    std::string qualifier;
    forget();
    plain->initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
    for (const std::string& line : Trace::lines()) {
      const std::string call = " = CommsChannel(\"";
      const auto at = line.find(call);
      if (at != std::string::npos) {
        const auto begin = at + call.size();
        return line.substr(begin, line.find('"', begin) - begin);
      }
    }
    return "no channel";
  }
};

TEST_P(TheNameOfAProxysChannel, EndsInLocalTimeAndBlankPaddedMicroseconds) {
  Platform::setWallClock(GetParam().seconds, GetParam().microseconds);
  EXPECT_EQ(nameFor("/svc/a"), std::string("/svc/a_proxy-") + GetParam().suffix);
}

TEST_P(TheNameOfAProxysChannel, BeginsWithTheWholeNameOfTheServices) {
  Platform::setWallClock(GetParam().seconds, GetParam().microseconds);
  for (const std::string& name : {std::string(300, 'c'), std::string("/svc/100%s%n%5d")}) {
    EXPECT_EQ(nameFor(name), name + "_proxy-" + GetParam().suffix);
  }
}

INSTANTIATE_TEST_SUITE_P(Each, TheNameOfAProxysChannel,
                         testing::Values(Moment{1794725515, 7, "2026-11-15.08:51:55.     7"},
                                         Moment{1794725515, 0, "2026-11-15.08:51:55.     0"},
                                         Moment{1794725515, 999999, "2026-11-15.08:51:55.999999"},
                                         Moment{0, 1000, "1970-01-01.02:00:00.  1000"},
                                         // Beyond what 32 bits of seconds hold.
                                         Moment{4102444799, 12, "2100-01-01.01:59:59.    12"}));

class TwoProxies : public ProxyLookup {};

TEST_F(TwoProxies, OfOneServiceInOneMicrosecond_HaveChannelsOfOneName) {
  offerProxy("libA.so", "createA");
  for (std::string qualifier : {"a", "b"}) {
    std::string lib = "libA.so";
    std::string creator = "createA";
    std::string svcChannel = "/svc/a";
    std::string ifc = "FooIfc";
    plain->initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
  }
  const std::string name = fakes::inQuotes(kChannelName);
  const Lines lines = Trace::lines();
  EXPECT_THAT(lines,
              testing::Contains("CommsChannel#1 = CommsChannel(" + name + ", null) [proxySem]"));
  EXPECT_THAT(lines,
              testing::Contains("CommsChannel#2 = CommsChannel(" + name + ", null) [proxySem]"));
}

TEST_F(TwoProxies, MadeAtTheSameTimeForOneInterface_AreBothRecordedAndTheFirstIsFound) {
  Platform::reply("find:FooIfc,host", "found:/svc/a");
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  // Another thread looks the same interface up while this one waits for the registry.
  Executable* others = nullptr;
  Platform::once("host.receiveReply(", [&] { others = plain->findService("FooIfc"); });
  Executable* ours = plain->findService("FooIfc");
  EXPECT_NE(ours, others);
  EXPECT_EQ(plain->findService("FooIfc"), others);
}

}  // namespace
}  // namespace zerva::conformance
