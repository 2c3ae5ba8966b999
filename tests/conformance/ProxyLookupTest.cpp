#include "tests/conformance/ProxyLookupTest.h"

#include <stdexcept>

namespace zerva::conformance {
namespace {

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

TEST_P(FindService, InARepositoryThatWritesIntoTheName_RecordsTheProxyUnderTheNameThatWasAsked) {
  class Scribbling : public fakes::RecordingRepository {
   public:
    using RecordingRepository::findServiceProxy;
    using RecordingRepository::RecordingRepository;
    Proxy* findServiceProxy(std::string& interfaceName) override {
      Proxy* const found = RecordingRepository::findServiceProxy(interfaceName);
      interfaceName = "scribbled";
      return found;
    }
  } scribbling(repository);
  plain =
      make<OpenConfigurator>(&channel, &scribbling, &protocols, &interceptors, &invokeInterceptors);
  Platform::reply("find:FooIfc,host", "found:/svc/a");
  Platform::reply("find_proxy:FooIfc", "found_proxy:libA.so,createA");
  offerProxy("libA.so", "createA");
  find("FooIfc");
  EXPECT_THAT(Trace::lines(), testing::Contains(testing::ContainsRegex(
                                  "ProxyRequestImpl.*CommsChannel#1, \"/svc/a\", \"FooIfc\"")));
  plain.reset();
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

TEST_P(FindService, WithACommaOrAZeroByteInItsName_IsAskedForWithThem) {
  const std::string ifc("Foo,If\0c", 8);
  Platform::reply("find:" + ifc + ",host", "found:/svc/a");
  EXPECT_EQ(find(ifc), nullptr);
  const Lines lines = Trace::lines();
  EXPECT_THAT(lines, testing::Contains("Message#1.setData(" +
                                       fakes::inQuotes("find:" + ifc + ",host") + ")"));
  EXPECT_THAT(lines,
              testing::Contains("Message#2.setData(" + fakes::inQuotes("find_proxy:" + ifc) + ")"));
}

TEST_P(FindService, OnAHostsChannelWithACommaInItsName_IsAskedForWithIt) {
  CommsChannel other("ho,st", nullptr);
  const auto another = make<OpenConfigurator>(&other, &repository);
  EXPECT_EQ(another->findService("FooIfc"), nullptr);
  EXPECT_THAT(Trace::lines(), testing::Contains("Message#1.setData(\"find:FooIfc,ho,st\")"));
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

TEST_F(AReply, ThatBeginsWithABlankAndAHash_ThrowsOutOfRange) {
  EXPECT_THROW(findWith(" # found:/svc/a", ""), std::out_of_range);
  EXPECT_THROW(findWith("found:/svc/a", "\t #found_proxy:libA.so,createA"), std::out_of_range);
}

TEST_F(AReply, ThatBeginsWithAHash_IsReadAtItsFirstFieldThatIsNotThere) {
  const auto found = [this] { findWith("#", ""); };
  const auto foundProxy = [this] { findWith("found:/svc/a", "#"); };
  EXPECT_EQ(messageOf<std::out_of_range>(found), outOfRange(1, 1));
  EXPECT_EQ(messageOf<std::out_of_range>(foundProxy), outOfRange(1, 1));
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("proxySem"))));
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

TEST_F(AReply, WithAZeroByteInTheChannel_KeepsWhatFollows) {
  offerProxy("libA.so", "createA");
  findWith(std::string("found:/svc/a\0b,more", 19), "found_proxy:libA.so,createA");
  EXPECT_THAT(
      Trace::lines(),
      testing::Contains(testing::HasSubstr(
          "CommsChannel#1 = CommsChannel(" +
          fakes::inQuotes(std::string("/svc/a\0b_proxy-", 15) + "2026-11-15.08:51:55.  4217"))));
}

TEST_F(AReply, WithAZeroByteInTheNames_KeepsWhatFollows) {
  offerProxy("libA.so", "createA");
  findWith("found:/svc/a", std::string("found_proxy:libA.so\0x,createA\0y", 31));
  EXPECT_THAT(Trace::lines(),
              testing::Contains("Dll#1 = Dll(" + fakes::inQuotes(std::string("libA.so\0x", 9)) +
                                ") [proxySem]"));
  EXPECT_THAT(Trace::lines(),
              testing::Contains("Proxy#1.initialise(ProxyRequestImpl#1) [proxySem]"));
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

TEST_P(FindProxy, WithACommaOrAZeroByteInItsName_IsAskedForWithThem) {
  const std::string ifc("Foo,If\0c", 8);
  EXPECT_EQ(find(ifc, "/svc/a", ""), nullptr);
  EXPECT_THAT(Trace::lines(),
              testing::Contains("Message#1.setData(" + fakes::inQuotes("find_proxy:" + ifc) + ")"));
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
  for (const char* reply : {"#", " # found_proxy:libA.so,createA"}) {
    Platform::reply("find_proxy:FooIfc", reply);
    EXPECT_EQ(messageOf<std::out_of_range>([this] { find("FooIfc", "/svc/a", ""); }),
              outOfRange(1, 1));
  }
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("proxySem"))));
}

TEST_P(FindProxy, WithAZeroByteInTheNames_KeepsWhatFollows) {
  Platform::reply("find_proxy:FooIfc", std::string("found_proxy:libA.so\0x,createA\0y", 31));
  offerProxy("libA.so", "createA");
  EXPECT_NE(find("FooIfc", "/svc/a", ""), nullptr);
}

INSTANTIATE_TEST_SUITE_P(AtLevel, FindProxy, testing::Values(4, 5));

}  // namespace
}  // namespace zerva::conformance
