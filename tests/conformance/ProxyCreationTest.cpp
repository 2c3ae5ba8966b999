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

TEST_P(MakingAProxy, WithoutAProtocolRepository_IsReportedBeforeAnythingIsMade) {
  const auto bare = make<OpenConfigurator>(&channel, &repository);
  offerProxy("libA.so", "createA");
  EXPECT_EQ(init(*bare), nullptr);
  const Lines lines = Trace::lines();
  ASSERT_GE(lines.size(), 3u);
  EXPECT_EQ(lines.front(), "proxySem.take(-1)");
  EXPECT_EQ(lines.back(), "proxySem.give() [proxySem]");
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const std::string& line) {
                            return line.rfind(
                                       "log(\"Service Config\", "
                                       "\"src/ServiceConfigurator\", 2, ",
                                       0) == 0;
                          }),
            1);
  EXPECT_THAT(lines, testing::Not(testing::Contains(testing::HasSubstr(" = "))));
}

TEST_P(MakingAProxy, OfAnUnknownProtocol_HandsANullAdapterOn) {
  fakes::RecordingProtocols none;
  const auto other =
      make<OpenConfigurator>(&channel, &repository, &none, &interceptors, &invokeInterceptors);
  offerProxy("libA.so", "createA");
  EXPECT_NE(init(*other), nullptr);
  EXPECT_THAT(Trace::lines(),
              testing::Contains(testing::HasSubstr("\"zerva_simple_rmi\", null, \"\"")));
}

TEST_P(MakingAProxy, WhoseCreatorThrows_LeavesTheSemaphoreTaken) {
  offer("libA.so", "createA",
        fakes::Creators::proxy([]() -> Proxy* { throw std::runtime_error("no proxy"); }));
  EXPECT_THROW(init(*plain), std::runtime_error);
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::ElementsAre("proxySem"));
  fakes::SemaphoreTable::clear();
  leaves("Dll#1");
}

TEST_P(MakingAProxy, WhoseInitialiseThrows_LeavesTheSemaphoreTaken) {
  offerProxy("libA.so", "createA");
  Platform::once("Proxy#1.initialise(", [] { throw std::runtime_error("no request"); });
  EXPECT_THROW(init(*plain), std::runtime_error);
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::ElementsAre("proxySem"));
  fakes::SemaphoreTable::clear();
  for (const char* name : {"Dll#1", "Proxy#1", "CommsChannel#1", "ProxyRequestImpl#1"})
    leaves(name);
}

INSTANTIATE_TEST_SUITE_P(AtLevel, MakingAProxy, testing::Values(4, 5));

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
