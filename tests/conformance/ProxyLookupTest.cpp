#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

/**
 * Looks proxies up in a configurator that overrides nothing. The wall clock stands at 15 November
 * 2026, 08:51:55 local time, 4217 microseconds.
 */
class ProxyLookup : public ConfiguratorTest {
 protected:
  ProxyLookup() {
    setenv("TZ", "XXX-2", 1);
    tzset();
    // 06:51:55 in Greenwich.
    Platform::setWallClock(1794725515, 4217);
    plain = make<OpenConfigurator>(&channel, &repository, &protocols, &interceptors,
                                   &invokeInterceptors);
  }

  ~ProxyLookup() override {
    unsetenv("TZ");
    tzset();
  }

  static std::string called(const std::string& ifc) {
    return progress("findService called for interface: %s", ifc);
  }
  static std::string askedRepository(const std::string& ifc) {
    return "repository.findServiceProxy(" + fakes::inQuotes(ifc) + ")";
  }
  static std::string foundLocally() {
    return progress("Service Configurator: Service proxy found locally, returning");
  }

  static constexpr const char* kChannelName = "/svc/a_proxy-2026-11-15.08:51:55.  4217";

  /** The lines from taking the semaphore until the library is tried. */
  static std::string discovered() {
    return asText({progress("%s", "Proxy info found- Lib: libA.so Cr: createA Comm: /svc/a"),
                   progress("Service Configurator: Resolving symbol to proxy creator function")});
  }

  /** The lines of a proxy that is made. */
  static std::string made(const std::string& proxy, const std::string& qualifier = "") {
    return locked(
        "proxySem",
        {discovered(), opened("Dll#1", "libA.so"), resolved("Dll#1", "createA"),
         progress("Service Configurator: Calling proxy creator function"), "createA()",
         "gettimeofday()", "localtime(1794725515)",
         "CommsChannel#1 = CommsChannel(" + fakes::inQuotes(kChannelName) + ", null)",
         progress("Service Configurator: Initialising proxy with request object"),
         "protocols.findProtocolAdapter(\"zerva_simple_rmi\")",
         "ProxyRequestImpl#1 = ProxyRequestImpl(CommsChannel#1, \"/svc/a\", \"FooIfc\", "
         "\"zerva_simple_rmi\", adapter, " +
             fakes::inQuotes(qualifier) + ", FrameworkContext)",
         proxy + ".initialise(ProxyRequestImpl#1)",
         "repository.addServiceProxy(" + proxy +
             ", Dll#1, CommsChannel#1, ProxyRequestImpl#1, \"FooIfc\")",
         progress("Service Configurator: Service proxy discovered & created, returning")});
  }

  std::unique_ptr<OpenConfigurator> plain;
};

/** At level 5 the progress is seen, at 4 it is not. */
class FindService : public ProxyLookup, public testing::WithParamInterface<int> {
 protected:
  FindService() { logLevel(GetParam()); }

  Executable* find(const std::string& ifc) { return plain->findService(ifc); }
};

TEST_P(FindService, OfARecordedProxy_SendsNothing) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "");
  EXPECT_EQ(find("FooIfc"), proxy);
  expectTrace({called("FooIfc"), askedRepository("FooIfc"), foundLocally()});
}

TEST_P(FindService, OfAProxyOnAnyChannelWithAnyQualifier_TakesTheFirst) {
  Proxy* proxy = recordProxy("FooIfc", "/another", "qualified");
  recordProxy("FooIfc", "/svc/a", "");
  EXPECT_EQ(find("FooIfc"), proxy);
}

TEST_P(FindService, OfARecordedService_DoesNotGiveIt) {
  recordService("FooIfc", "fooChannel");
  EXPECT_EQ(find("FooIfc"), nullptr);
  expectTrace(
      {called("FooIfc"), askedRepository("FooIfc"), "host.getName()", query("find:FooIfc,host")});
}

TEST_P(FindService, ThatNobodyKnows_SendsNoQueryForAProxy) {
  Platform::reply("find:FooIfc,host", "not_found:FooIfc");
  EXPECT_EQ(find("FooIfc"), nullptr);
  expectTrace(
      {called("FooIfc"), askedRepository("FooIfc"), "host.getName()", query("find:FooIfc,host")});
}

TEST_P(FindService, WhoseProxyNobodyKnows_GivesNull) {
  Platform::reply("find:FooIfc,host", "found:/svc/a");
  Platform::reply("find_proxy:FooIfc", "no_proxy:");
  EXPECT_EQ(find("FooIfc"), nullptr);
  expectTrace({called("FooIfc"), askedRepository("FooIfc"), "host.getName()",
               query("find:FooIfc,host", 1), query("find_proxy:FooIfc", 2)});
}

TEST_P(FindService, ThatTheRegistryKnows_MakesAndRecordsAProxy) {
  Platform::reply("find:FooIfc,host", "found:/svc/a");
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  Executable* proxy = find("FooIfc");
  expectTrace({called("FooIfc"), askedRepository("FooIfc"), "host.getName()",
               query("find:FooIfc,host", 1), query("find_proxy:FooIfc", 2), made("Proxy#1")});
  EXPECT_EQ(fakes::Objects::name(proxy), "Proxy#1");
}

TEST_P(FindService, AskedAgain_GivesTheProxyThatWasMade) {
  Platform::reply("find:FooIfc,host", "found:/svc/a");
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  Executable* proxy = find("FooIfc");
  forget();
  EXPECT_EQ(find("FooIfc"), proxy);
  expectTrace({called("FooIfc"), askedRepository("FooIfc"), foundLocally()});
}

TEST_P(FindService, WithMoreFieldsInTheReplies_IgnoresThem) {
  Platform::reply("find:FooIfc,host", "found: /svc/a,more,fields,a,b,c");
  Platform::reply("find_proxy:FooIfc", " found_proxy:  libA.so,createA,tcp,a,b,c ");
  offerProxy("libA.so", "createA");
  find("FooIfc");
  expectTrace({called("FooIfc"), askedRepository("FooIfc"), "host.getName()",
               query("find:FooIfc,host", 1), query("find_proxy:FooIfc", 2), made("Proxy#1")});
}

INSTANTIATE_TEST_SUITE_P(AtLevel, FindService, testing::Values(4, 5));

class AReply : public ProxyLookup {
 protected:
  Executable* findWith(const std::string& found, const std::string& foundProxy) {
    Platform::reply("find:FooIfc,host", found);
    Platform::reply("find_proxy:FooIfc", foundProxy);
    Executable* result = plain->findService("FooIfc");
    return result;
  }

  /** The requests that were sent. */
  static std::vector<std::string> requests() {
    std::vector<std::string> requests;
    const std::string call = ".setData(";
    for (const std::string& line : Trace::lines()) {
      const auto at = line.find(call);
      if (at != std::string::npos) requests.push_back(line.substr(at + call.size()));
    }
    return requests;
  }
};

TEST_F(AReply, InOtherCase_IsNoMatch) {
  EXPECT_EQ(findWith("Found:/svc/a", "found_proxy:libA.so,createA"), nullptr);
  EXPECT_THAT(requests(), testing::ElementsAre("\"find:FooIfc,host\")"));
}

TEST_F(AReply, OfALongerWord_IsNoMatch) {
  EXPECT_EQ(findWith("found_it:/svc/a", ""), nullptr);
  EXPECT_EQ(findWith("foun:/svc/a", ""), nullptr);
  EXPECT_EQ(requests().size(), 2u);
}

TEST_F(AReply, ToTheProxyQueryInOtherCase_IsNoMatch) {
  EXPECT_EQ(findWith("found:/svc/a", "Found_proxy:libA.so,createA"), nullptr);
  EXPECT_EQ(findWith("found:/svc/a", "found:libA.so,createA"), nullptr);
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("proxySem"))));
}

TEST_F(AReply, WithoutAColonOrEmpty_IsNoMatch) {
  EXPECT_EQ(findWith("found", ""), nullptr);
  EXPECT_EQ(findWith("", ""), nullptr);
  EXPECT_EQ(findWith("found:/svc/a", "found_proxy"), nullptr);
  EXPECT_EQ(findWith("found:/svc/a", ""), nullptr);
}

TEST_F(AReply, ThatBeginsWithAHash_ThrowsOutOfRange) {
  EXPECT_THROW(findWith("#", ""), std::out_of_range);
  EXPECT_THROW(findWith("# found:/svc/a", ""), std::out_of_range);
  EXPECT_THROW(findWith("found:/svc/a", "#found_proxy:libA.so,createA"), std::out_of_range);
}

TEST_F(AReply, WithoutAChannel_IsUsedAsItIs) {
  offerProxy("libA.so", "createA");
  EXPECT_NE(findWith("found:", "found_proxy:libA.so,createA"), nullptr);
  EXPECT_THAT(Trace::lines(), testing::Contains(testing::HasSubstr(
                                  "CommsChannel(\"_proxy-2026-11-15.08:51:55.  4217\", null)")));
}

TEST_F(AReply, WithoutACreator_ResolvesAnEmptyName) {
  offerProxy("libA.so", "createA");
  EXPECT_EQ(findWith("found:/svc/a", "found_proxy:libA.so"), nullptr);
  EXPECT_THAT(Trace::lines(), testing::Contains("Dll#1.symbol(\"\") [proxySem]"));
}

/** At level 5 the progress is seen, at 4 it is not. */
class FindProxy : public ProxyLookup, public testing::WithParamInterface<int> {
 protected:
  FindProxy() { logLevel(GetParam()); }

  Proxy* find(std::string ifc, std::string svcChannel, std::string qualifier) {
    return plain->framework().findProxy(ifc, svcChannel, qualifier);
  }

  static std::string asked(const std::string& ifc, const std::string& svcChannel) {
    return progress("ServiceConfigurator::findProxy( interface='%s' svcChannel='%s'", ifc,
                    svcChannel);
  }
  static std::string askedRepository(const std::string& qualifier) {
    return "repository.findServiceProxy(\"FooIfc\", \"/svc/a\", " + fakes::inQuotes(qualifier) +
           ")";
  }
};

TEST_P(FindProxy, WithoutAChannel_SaysSoAndAsksNobody) {
  EXPECT_EQ(find("FooIfc", "", "q"), nullptr);
  expectTrace({asked("FooIfc", ""),
               error("ServiceConfigurator::findProxy( interface='%s' svcChannel=''", "FooIfc")});
}

TEST_P(FindProxy, ThatIsRecorded_IsGivenWithoutAQuery) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "q");
  EXPECT_EQ(find("FooIfc", "/svc/a", "q"), proxy);
  expectTrace({asked("FooIfc", "/svc/a"), askedRepository("q"),
               progress("Service Configurator: Service proxy found locally, returning\n")});
}

TEST_P(FindProxy, ThatNobodyKnows_GivesNull) {
  EXPECT_EQ(find("FooIfc", "/svc/a", ""), nullptr);
  expectTrace({asked("FooIfc", "/svc/a"), askedRepository(""), query("find_proxy:FooIfc")});
}

TEST_P(FindProxy, WithAnotherQualifier_MakesAnotherProxy) {
  recordProxy("FooIfc", "/svc/a", "");
  recordProxy("FooIfc", "/svc/b", "q");
  fakes::Objects::renumber();
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  Proxy* proxy = find("FooIfc", "/svc/a", "q");
  EXPECT_EQ(fakes::Objects::name(proxy), "Proxy#1");
  expectTrace({asked("FooIfc", "/svc/a"), askedRepository("q"), query("find_proxy:FooIfc"),
               made("Proxy#1", "q")});
}

TEST_P(FindProxy, AskedAgain_GivesTheProxyThatWasMade) {
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  Proxy* proxy = find("FooIfc", "/svc/a", "q");
  EXPECT_EQ(find("FooIfc", "/svc/a", "q"), proxy);
}

TEST_P(FindProxy, WithTwoArguments_IsWithAnEmptyQualifier) {
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  std::string ifc = "FooIfc";
  std::string svcChannel = "/svc/a";
  plain->framework().findProxy(ifc, svcChannel);
  expectTrace({asked("FooIfc", "/svc/a"), askedRepository(""), query("find_proxy:FooIfc"),
               made("Proxy#1")});
}

TEST_P(FindProxy, WithAReplyThatBeginsWithAHash_ThrowsOutOfRange) {
  Platform::reply("find_proxy:FooIfc", "#");
  EXPECT_THROW(find("FooIfc", "/svc/a", ""), std::out_of_range);
}

INSTANTIATE_TEST_SUITE_P(AtLevel, FindProxy, testing::Values(4, 5));

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
