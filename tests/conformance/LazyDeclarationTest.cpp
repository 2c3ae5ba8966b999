#include <stdexcept>

#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

/** At level 5 the progress is seen, at 4 it is not. No library is opened by any of these. */
class DeclaringALazyService : public ConfiguratorTest, public testing::WithParamInterface<int> {
 protected:
  DeclaringALazyService() {
    logLevel(GetParam());
    sut->services["ServiceRegistryIfc"] = nullptr;
  }

  Service* declare(const std::string& chan, const std::string& ifc, bool flag = true) {
    return sut->createServiceExecutorDelayedInitialisation("libfoo.so", "createFoo", chan, ifc,
                                                           flag);
  }

  static std::string started(const std::string& chan, const std::string& ifc,
                             const std::string& flag = "true") {
    return asText(
        {progress("Service Configurator: Creating CommsChannel - '%s'", chan),
         "CommsChannel#1 = CommsChannel(" + fakes::inQuotes(chan) + ", interceptors)",
         progress("Service Configurator: Creating Service Executor with lazy initialisation"),
         "ServiceExecutor#1 = ServiceExecutor(\"libfoo.so\", \"createFoo\", " +
             fakes::inQuotes(ifc) +
             ", CommsChannel#1, FrameworkContext, pool, invokeInterceptors, " + flag + ")",
         progress("Service Configurator: Service Executor created successfully"),
         progress("Service Configurator: Starting Service Executor"), "Threader#1 = Threader()",
         "ServiceExecutor#1.startThread(Threader#1)",
         progress("Service Configurator: Service Executor Running")});
  }

  static std::string lookedUp() { return "configurator.findService(\"ServiceRegistryIfc\")"; }
  static std::string noRegistry() {
    return error(
        "ServiceConfigurator::createServiceExecutorDelayedInitialisation() cannot get svcRegistry "
        "interface!");
  }
};

TEST_P(DeclaringALazyService, WithoutARegistry_StartsItsExecutorAndSaysSo) {
  EXPECT_EQ(declare("fooChannel", "FooIfc"), nullptr);
  expectTraceButEndOfThreader({started("fooChannel", "FooIfc"), lookedUp(), noRegistry()});
}

TEST_P(DeclaringALazyService, WithARegistry_StartsItsExecutorAndAnnouncesTheList) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  EXPECT_EQ(declare("fooChannel", "FooIfc BarIfc"), nullptr);
  expectTraceButEndOfThreader(
      {started("fooChannel", "FooIfc BarIfc"), lookedUp(),
       "RegistryProxy#1.registerInterface(\"FooIfc BarIfc\", \"fooChannel\")"});
}

TEST_P(DeclaringALazyService, FindsTheRegistryAsAnExecutable) {
  fakes::RecordingRegistryProxy registry;
  sut->executables["ServiceRegistryIfc"] = &registry;
  forget();
  EXPECT_EQ(declare("fooChannel", "FooIfc"), nullptr);
  expectTraceButEndOfThreader({started("fooChannel", "FooIfc"),
                               "configurator.findExecutable(\"ServiceRegistryIfc\")",
                               "RegistryProxy#1.registerInterface(\"FooIfc\", \"fooChannel\")"});
}

TEST_P(DeclaringALazyService, WithARegistryThatIsNone_SaysSo) {
  fakes::RecordingService registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  EXPECT_EQ(declare("fooChannel", "FooIfc"), nullptr);
  expectTraceButEndOfThreader({started("fooChannel", "FooIfc"), lookedUp(), noRegistry()});
}

TEST_P(DeclaringALazyService, WithASingleThread_HandsTheFlagOn) {
  EXPECT_EQ(declare("fooChannel", "FooIfc", false), nullptr);
  expectTraceButEndOfThreader({started("fooChannel", "FooIfc", "false"), lookedUp(), noRegistry()});
}

TEST_P(DeclaringALazyService, ThatIsTheRegistry_AnnouncesNothing) {
  EXPECT_EQ(declare("/zerva/serviceregistry", "ServiceRegistryIfc"), nullptr);
  expectTraceButEndOfThreader({started("/zerva/serviceregistry", "ServiceRegistryIfc")});
}

TEST_P(DeclaringALazyService, OfTheRegistrysNameAndAnother_IsAServiceLikeOthers) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  EXPECT_EQ(declare("c", "ServiceRegistryIfc OtherIfc"), nullptr);
  expectTraceButEndOfThreader(
      {started("c", "ServiceRegistryIfc OtherIfc"), lookedUp(),
       "RegistryProxy#1.registerInterface(\"ServiceRegistryIfc OtherIfc\", \"c\")"});
}

TEST_P(DeclaringALazyService, OfAHeartbeatInterface_StartsNoMonitoringYet) {
  EXPECT_EQ(declare("fooChannel", "HeartbeatServiceIfc"), nullptr);
  expectTraceButEndOfThreader(
      {started("fooChannel", "HeartbeatServiceIfc"), lookedUp(), noRegistry()});
}

TEST_P(DeclaringALazyService, WhoseAnnouncementThrows_LetsTheExceptionPassWhileItsExecutorRuns) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  Platform::once("RegistryProxy#1.registerInterface(",
                 [] { throw std::runtime_error("no registry"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { declare("fooChannel", "FooIfc"); }),
            "no registry");
  expectTraceButEndOfThreader({started("fooChannel", "FooIfc"), lookedUp(),
                               "RegistryProxy#1.registerInterface(\"FooIfc\", \"fooChannel\")"});
}

TEST_P(DeclaringALazyService, WhoseThreadCannotBeStarted_IsNotAnnounced) {
  Platform::once("ServiceExecutor#1.startThread(", [] { throw std::runtime_error("no thread"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { declare("fooChannel", "FooIfc"); }),
            "no thread");
  const Lines lines = Trace::lines();
  EXPECT_EQ(lines.back(), "~Threader#1");
  EXPECT_EQ(lines[lines.size() - 2], "ServiceExecutor#1.startThread(Threader#1)");
}

TEST_P(DeclaringALazyService, ThatIsNeverNeeded_GoesWithThePool) {
  declare("fooChannel", "FooIfc");
  forget();
  end();
  EXPECT_THAT(Trace::lines(1), testing::Contains("~ServiceExecutor#1"));
}

INSTANTIATE_TEST_SUITE_P(AtLevel, DeclaringALazyService, testing::Values(4, 5));

}  // namespace
}  // namespace zerva::conformance
