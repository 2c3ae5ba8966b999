#include <stdexcept>

#include "framework/ServiceExecutor.h"
#include "tests/conformance/ProxyLookupTest.h"

namespace zerva::conformance {
namespace {

/** Errors are written whatever the level. */
class ARegistryRecord : public ConfiguratorTest {
 protected:
  ARegistryRecord() {
    logLevel(0);
    sut->services["ServiceRegistryIfc"] = &registry;
    forget();
  }

  void noRegistry() { sut->services["ServiceRegistryIfc"] = nullptr; }

  static std::string lookedUp() { return "configurator.findService(\"ServiceRegistryIfc\")"; }
  static std::string sent(const std::string& text) {
    return "host.sendTo(\"/zerva/serviceregistry\", " + fakes::inQuotes(text) + ")";
  }
  static std::string noInvoker() {
    return error("ServiceConfigurator::registerInvokerInfo() cannot get svcRegistry interface!");
  }
  static std::string noProxy() {
    return error("ServiceConfigurator::registerProxyInfo() cannot get svcRegistry interface!");
  }

  fakes::RecordingRegistryProxy registry;
};

TEST_F(ARegistryRecord, OfAnInvoker_IsHandedToTheRegistry) {
  sut->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  expectTrace(
      {lookedUp(), "RegistryProxy#1.registerInvoker(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")"});
}

TEST_F(ARegistryRecord, OfAProxy_IsHandedToTheRegistry) {
  sut->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  expectTrace(
      {lookedUp(), "RegistryProxy#1.registerProxy(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")"});
}

TEST_F(ARegistryRecord, FindsTheRegistryAsAnExecutable) {
  sut->executables["ServiceRegistryIfc"] = &registry;
  sut->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  sut->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  const std::string found = "configurator.findExecutable(\"ServiceRegistryIfc\")";
  expectTrace(
      {found, "RegistryProxy#1.registerInvoker(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")", found,
       "RegistryProxy#1.registerProxy(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")"});
}

TEST_F(ARegistryRecord, OfEmptyTexts_IsHandedOnWithThem) {
  sut->registerInvokerInfo("", "", "", "");
  sut->registerProxyInfo("", "", "FooIfc", "");
  expectTrace({lookedUp(), "RegistryProxy#1.registerInvoker(\"\", \"\", \"\", \"\")", lookedUp(),
               "RegistryProxy#1.registerProxy(\"\", \"\", \"FooIfc\", \"\")"});
}

TEST_F(ARegistryRecord, WithoutARegistry_IsReportedAndLost) {
  noRegistry();
  sut->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  sut->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  expectTrace({lookedUp(), noInvoker(), lookedUp(), noProxy()});
}

TEST_F(ARegistryRecord, WithARegistryThatIsNone_IsReportedAndLost) {
  fakes::RecordingService other;
  sut->services["ServiceRegistryIfc"] = &other;
  forget();
  sut->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  sut->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  expectTrace({lookedUp(), noInvoker(), lookedUp(), noProxy()});
}

TEST_F(ARegistryRecord, WithARegistryThatIsAService_IsHandedToIt) {
  fakes::RecordingRegistryService service;
  sut->services["ServiceRegistryIfc"] = &service;
  forget();
  sut->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  expectTrace(
      {lookedUp(), "RegistryService#1.registerProxy(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")"});
}

TEST_F(ARegistryRecord, OfTheRegistrysInvoker_IsSentAsTextOnly) {
  sut->registerInvokerInfo("libA.so", "createA", "ServiceRegistryIfc", "zerva_simple_rmi");
  expectTrace({sent("reg_invoker:libA.so,createA,ServiceRegistryIfc,zerva_simple_rmi")});
}

TEST_F(ARegistryRecord, OfTheRegistrysInvokerWithoutARegistry_IsSentAsTextOnly) {
  noRegistry();
  sut->registerInvokerInfo("libA.so", "createA", "ServiceRegistryIfc", "zerva_simple_rmi");
  expectTrace({sent("reg_invoker:libA.so,createA,ServiceRegistryIfc,zerva_simple_rmi")});
}

TEST_F(ARegistryRecord, OfTheRegistrysProxy_IsSentAsTextAndHandedToTheRegistry) {
  sut->registerProxyInfo("libA.so", "createA", "ServiceRegistryIfc", "zerva_simple_rmi");
  expectTrace({sent("reg_proxy:libA.so,createA,ServiceRegistryIfc,zerva_simple_rmi"), lookedUp(),
               "RegistryProxy#1.registerProxy(\"libA.so\", \"createA\", \"ServiceRegistryIfc\", "
               "\"zerva_simple_rmi\")"});
}

TEST_F(ARegistryRecord, OfTheRegistrysProxyWithoutARegistry_IsSentAndThenReported) {
  noRegistry();
  sut->registerProxyInfo("libA.so", "createA", "ServiceRegistryIfc", "zerva_simple_rmi");
  expectTrace({sent("reg_proxy:libA.so,createA,ServiceRegistryIfc,zerva_simple_rmi"), lookedUp(),
               noProxy()});
}

TEST_F(ARegistryRecord, OfTheRegistryWithEmptyTexts_LeavesTheCommas) {
  noRegistry();
  sut->registerInvokerInfo("", "", "ServiceRegistryIfc", "");
  sut->registerProxyInfo("", "", "ServiceRegistryIfc", "");
  expectTrace({sent("reg_invoker:,,ServiceRegistryIfc,"), sent("reg_proxy:,,ServiceRegistryIfc,"),
               lookedUp(), noProxy()});
}

TEST_F(ARegistryRecord, OfTheRegistryWithACommaInAField_IsNotEscaped) {
  sut->registerInvokerInfo("a,b", "c", "ServiceRegistryIfc", "d e");
  expectTrace({sent("reg_invoker:a,b,c,ServiceRegistryIfc,d e")});
}

TEST_F(ARegistryRecord, OfAnyBytes_IsSentAndHandedOnWithThem) {
  const std::string lib("l\0b\xc3\xa4.so", 8);
  const std::string creator("create\0\xff", 8);
  const std::string protocol("\0tcp", 4);
  sut->registerProxyInfo(lib, creator, "ServiceRegistryIfc", protocol);
  expectTrace({sent("reg_proxy:" + lib + "," + creator + ",ServiceRegistryIfc," + protocol),
               lookedUp(),
               "RegistryProxy#1.registerProxy(" +
                   fakes::joined({fakes::inQuotes(lib), fakes::inQuotes(creator),
                                  "\"ServiceRegistryIfc\"", fakes::inQuotes(protocol)}) +
                   ")"});
  sut->registerInvokerInfo(lib, creator, "ServiceRegistryIfc", protocol);
  expectTrace({sent("reg_invoker:" + lib + "," + creator + ",ServiceRegistryIfc," + protocol)});
}

TEST_F(ARegistryRecord, OfTheRegistrysNameInOtherCase_IsAnOrdinaryOne) {
  sut->registerInvokerInfo("lib.so", "create", "serviceRegistryIfc", "tcp");
  sut->registerProxyInfo("lib.so", "create", "SERVICEREGISTRYIFC", "tcp");
  sut->registerProxyInfo("lib.so", "create", "ServiceRegistryIfc2", "tcp");
  expectTrace(
      {lookedUp(),
       "RegistryProxy#1.registerInvoker(\"lib.so\", \"create\", \"serviceRegistryIfc\", \"tcp\")",
       lookedUp(),
       "RegistryProxy#1.registerProxy(\"lib.so\", \"create\", \"SERVICEREGISTRYIFC\", \"tcp\")",
       lookedUp(),
       "RegistryProxy#1.registerProxy(\"lib.so\", \"create\", \"ServiceRegistryIfc2\", "
       "\"tcp\")"});
}

TEST_F(ARegistryRecord, SaidTwice_IsHandedOnTwice) {
  sut->registerInvokerInfo("libA.so", "createA", "ServiceRegistryIfc", "x");
  sut->registerInvokerInfo("libA.so", "createA", "ServiceRegistryIfc", "x");
  expectTrace({sent("reg_invoker:libA.so,createA,ServiceRegistryIfc,x"),
               sent("reg_invoker:libA.so,createA,ServiceRegistryIfc,x")});
}

/** A record, and the call that throws on its way; it is the last one that is made. */
struct ThrowingRecord {
  const char* name;
  bool ofAnInvoker;
  const char* ifc;
  const char* call;
};

class AnExceptionOnTheWayOfARecord : public ARegistryRecord,
                                     public testing::WithParamInterface<ThrowingRecord> {
 protected:
  void tell() {
    const auto tellOf = GetParam().ofAnInvoker ? &TestConfigurator::registerInvokerInfo
                                               : &TestConfigurator::registerProxyInfo;
    (*sut.*tellOf)("lib.so", "create", GetParam().ifc, "tcp");
  }
};

TEST_P(AnExceptionOnTheWayOfARecord, PassesAndNothingFollows) {
  Platform::once(GetParam().call, [] { throw std::runtime_error("thrown here"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { tell(); }), "thrown here");
  const Lines lines = Trace::lines();
  ASSERT_FALSE(lines.empty());
  EXPECT_THAT(lines.back(), testing::StartsWith(GetParam().call));
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, AnExceptionOnTheWayOfARecord,
    testing::Values(
        ThrowingRecord{"Invoker", true, "FooIfc", "RegistryProxy#1.registerInvoker("},
        ThrowingRecord{"Proxy", false, "FooIfc", "RegistryProxy#1.registerProxy("},
        ThrowingRecord{"TheRegistrysInvoker", true, "ServiceRegistryIfc", "host.sendTo("},
        ThrowingRecord{"TheRegistrysProxy", false, "ServiceRegistryIfc", "host.sendTo("},
        ThrowingRecord{"TheRegistrysProxyAfterItWasSent", false, "ServiceRegistryIfc",
                       "RegistryProxy#1.registerProxy("}),
    [](const auto& parameter) { return parameter.param.name; });

/** Sending succeeds, since somebody serves the registry's channel. */
class ARecordOfTheRegistryItself : public ARegistryRecord {
 protected:
  ARecordOfTheRegistryItself() {
    sut->services["ServiceRegistryIfc"] = &service;
    forget();
  }

  fakes::RecordingRegistryService service;
  ServiceExecutor executor{
      &service, new CommsChannel("/zerva/serviceregistry", nullptr), "", nullptr, nullptr, nullptr,
      true};
};

TEST_F(ARecordOfTheRegistryItself, OfTheProxyThatWasSent_IsHandedToTheRegistryToo) {
  sut->registerProxyInfo("libA.so", "createA", "ServiceRegistryIfc", "tcp");
  expectTrace({sent("reg_proxy:libA.so,createA,ServiceRegistryIfc,tcp"), lookedUp(),
               "RegistryService#1.registerProxy(\"libA.so\", \"createA\", "
               "\"ServiceRegistryIfc\", \"tcp\")"});
}

TEST_F(ARecordOfTheRegistryItself, OfTheProxyThatWasSentWithoutARegistry_IsReported) {
  noRegistry();
  sut->registerProxyInfo("libA.so", "createA", "ServiceRegistryIfc", "tcp");
  expectTrace({sent("reg_proxy:libA.so,createA,ServiceRegistryIfc,tcp"), lookedUp(), noProxy()});
}

TEST_F(ARecordOfTheRegistryItself, OfTheInvokerThatWasSent_IsSentAsTextOnly) {
  sut->registerInvokerInfo("libA.so", "createA", "ServiceRegistryIfc", "tcp");
  expectTrace({sent("reg_invoker:libA.so,createA,ServiceRegistryIfc,tcp")});
}

/** From a record to the registry, without anything scripted between. */
class ARecordsWay : public ProxyLookup {
 protected:
  ARecordsWay() {
    Platform::reply("find:ServiceRegistryIfc,host", "found:/svc/a");
    Platform::reply("find_proxy:ServiceRegistryIfc", "found_proxy:libA.so,createA");
    offerProxy<fakes::RecordingRegistryProxy>("libA.so", "createA");
  }

  /** The registry is looked up and found by queries, and its proxy made. */
  static std::string found() {
    const std::string ifc = "ServiceRegistryIfc";
    return asText({called(ifc), askedRepository(ifc), "host.getName()",
                   query("find:ServiceRegistryIfc,host", 1),
                   query("find_proxy:ServiceRegistryIfc", 2), made("RegistryProxy#1", "", ifc)});
  }

  static std::string foundAgain() {
    const std::string ifc = "ServiceRegistryIfc";
    return asText({called(ifc), askedRepository(ifc), foundLocally()});
  }
};

TEST_F(ARecordsWay, GoesThroughALookupAndANewProxyToTheRegistry) {
  plain->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  expectTrace(
      {found(), "RegistryProxy#1.registerProxy(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")"});
}

TEST_F(ARecordsWay, AfterTheFirst_GoesThroughTheProxyThatWasMade) {
  plain->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  plain->registerInvokerInfo("lib.so", "create", "BarIfc", "tcp");
  expectTrace({found(),
               "RegistryProxy#1.registerInvoker(\"lib.so\", \"create\", \"FooIfc\", \"tcp\")",
               foundAgain(),
               "RegistryProxy#1.registerInvoker(\"lib.so\", \"create\", \"BarIfc\", \"tcp\")"});
}

TEST_F(ARecordsWay, WithoutAnAnswerOfTheRegistry_EndsInTheLog) {
  Platform::reply("find:ServiceRegistryIfc,host", "unknown:");
  plain->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  const std::string ifc = "ServiceRegistryIfc";
  expectTrace(
      {called(ifc), askedRepository(ifc), "host.getName()", query("find:ServiceRegistryIfc,host"),
       error("ServiceConfigurator::registerInvokerInfo() cannot get svcRegistry interface!")});
}

TEST_F(ARecordsWay, IsTheWayOfAnAnnouncementToo) {
  offerService("libfoo.so", "createFoo");
  plain->createServiceExecutor("libfoo.so", "createFoo", "fooChannel", "FooIfc", true);
  EXPECT_THAT(Trace::lines(),
              testing::Contains("RegistryProxy#1.registerInterface(\"FooIfc\", \"fooChannel\")"));
}

}  // namespace
}  // namespace zerva::conformance
