#include <stdexcept>

#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

const char* const kNoRegistry =
    "ServiceConfigurator::createServiceExecutor() cannot get svcRegistry interface!";
const char* const kNullService =
    "ServiceConfigurator::createServiceExecutor() : Error while initializing service (NULL pointer "
    "returned).";

/** At level 5 the progress is seen, at 4 it is not. */
class CreatingAService : public ConfiguratorTest, public testing::WithParamInterface<int> {
 protected:
  CreatingAService() {
    logLevel(GetParam());
    sut->services["ServiceRegistryIfc"] = nullptr;
  }

  Service* create(const std::string& chan, const std::string& ifc, bool flag = true) {
    return sut->createServiceExecutor("libfoo.so", "createFoo", chan, ifc, flag);
  }

  /** The lines up to the making of the executor. */
  static std::string made(const std::string& service, const std::string& chan,
                          const std::string& ifc, const std::string& flag = "true") {
    return asText({progress("Opening Lib: '%s'", "libfoo.so"), opened("Dll#1", "libfoo.so"),
                   progress("Resolving symbol: '%s'", "createFoo"), resolved("Dll#1", "createFoo"),
                   progress("Service Configurator: Calling creator fn"), "createFoo()",
                   progress("Service Configurator: Creating CommsChannel - '%s'", chan),
                   "CommsChannel#1 = CommsChannel(" + fakes::inQuotes(chan) + ", interceptors)",
                   progress("Service Configurator: Creating Service Executor"),
                   "ServiceExecutor#1 = ServiceExecutor(" + service + ", CommsChannel#1, " +
                       fakes::inQuotes(ifc) + ", FrameworkContext, pool, invokeInterceptors, " +
                       flag + ")",
                   progress("Service Configurator: Service Executor created successfully")});
  }

  static std::string recorded(const std::string& service, const std::string& ifc) {
    return "repository.addService(" + service + ", ServiceExecutor#1, CommsChannel#1, Dll#1, " +
           fakes::inQuotes(ifc) + ")";
  }

  static std::string lookedUp() { return "configurator.findService(\"ServiceRegistryIfc\")"; }

  static std::string initialised(const std::string& service, const std::string& ifc) {
    return asText({progress("Service Configurator: Calling init ifc = '%s'", ifc),
                   "clock_gettime(CLOCK_MONOTONIC)", service + ".init(SvcRTEContext)",
                   "clock_gettime(CLOCK_MONOTONIC)", initTook(ifc)});
  }

  static std::string started(const std::string& ifc) {
    return asText({progress("Service Configurator: Service created successfully ifc = '%s'", ifc),
                   progress("Service Configurator: Starting Service Executor"),
                   "Threader#1 = Threader()", "ServiceExecutor#1.startThread(Threader#1)",
                   progress("Service Configurator: Service Executor Running")});
  }
};

TEST_P(CreatingAService, WithoutARegistry_MakesRecordsInitialisesAndStartsIt) {
  offerService("libfoo.so", "createFoo");
  Service* service = create("fooChannel", "FooIfc");
  expectTraceButEndOfThreader({made("Service#1", "fooChannel", "FooIfc"),
                               recorded("Service#1", "FooIfc"), lookedUp(), error(kNoRegistry),
                               initialised("Service#1", "FooIfc"), started("FooIfc")});
  EXPECT_EQ(fakes::Objects::name(service), "Service#1");
}

TEST_P(CreatingAService, WithARegistry_AnnouncesItBeforeItIsInitialised) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService("libfoo.so", "createFoo");
  create("fooChannel", "FooIfc");
  expectTraceButEndOfThreader({made("Service#1", "fooChannel", "FooIfc"),
                               recorded("Service#1", "FooIfc"), lookedUp(),
                               "RegistryProxy#1.registerInterface(\"FooIfc\", \"fooChannel\")",
                               initialised("Service#1", "FooIfc"), started("FooIfc")});
}

TEST_P(CreatingAService, WithARegistryThatIsNone_SaysSoAndGoesOn) {
  fakes::RecordingProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService("libfoo.so", "createFoo");
  create("fooChannel", "FooIfc");
  expectTraceButEndOfThreader({made("Service#1", "fooChannel", "FooIfc"),
                               recorded("Service#1", "FooIfc"), lookedUp(), error(kNoRegistry),
                               initialised("Service#1", "FooIfc"), started("FooIfc")});
}

TEST_P(CreatingAService, OfSeveralInterfaces_HandsTheListOnWhole) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService("libfoo.so", "createFoo");
  create("fooChannel", "FooIfc FooAdminIfc");
  const std::string list = "FooIfc FooAdminIfc";
  expectTraceButEndOfThreader(
      {made("Service#1", "fooChannel", list), recorded("Service#1", list), lookedUp(),
       "RegistryProxy#1.registerInterface(\"FooIfc FooAdminIfc\", \"fooChannel\")",
       initialised("Service#1", list), started(list)});
}

TEST_P(CreatingAService, OfNoInterface_AnnouncesTheEmptyTextAndRecordsItNowhere) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService("libfoo.so", "createFoo");
  Service* service = create("fooChannel", "");
  expectTraceButEndOfThreader({made("Service#1", "fooChannel", ""), recorded("Service#1", ""),
                               lookedUp(),
                               "RegistryProxy#1.registerInterface(\"\", \"fooChannel\")",
                               initialised("Service#1", ""), started("")});
  EXPECT_FALSE(inner.containsService(service));
  // Nobody deletes them; the executor is the pool's.
  leaves("Service#1");
  leaves("Dll#1");
}

TEST_P(CreatingAService, FindsTheRegistryAsAnExecutable) {
  fakes::RecordingRegistryProxy registry;
  sut->executables["ServiceRegistryIfc"] = &registry;
  forget();
  offerService("libfoo.so", "createFoo");
  create("fooChannel", "FooIfc");
  expectTraceButEndOfThreader({made("Service#1", "fooChannel", "FooIfc"),
                               recorded("Service#1", "FooIfc"),
                               "configurator.findExecutable(\"ServiceRegistryIfc\")",
                               "RegistryProxy#1.registerInterface(\"FooIfc\", \"fooChannel\")",
                               initialised("Service#1", "FooIfc"), started("FooIfc")});
}

TEST_P(CreatingAService, WithASingleThread_HandsTheFlagOn) {
  offerService("libfoo.so", "createFoo");
  create("fooChannel", "FooIfc", false);
  expectTraceButEndOfThreader({made("Service#1", "fooChannel", "FooIfc", "false"),
                               recorded("Service#1", "FooIfc"), lookedUp(), error(kNoRegistry),
                               initialised("Service#1", "FooIfc"), started("FooIfc")});
}

TEST_P(CreatingAService, ThatIsTheRegistry_AnnouncesItByItselfAfterItsInit) {
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  create("fooChannel", "ServiceRegistryIfc");
  const std::string ifc = "ServiceRegistryIfc";
  expectTraceButEndOfThreader(
      {made("RegistryService#1", "fooChannel", ifc), recorded("RegistryService#1", ifc),
       initialised("RegistryService#1", ifc),
       "RegistryService#1.registerInterface(\"ServiceRegistryIfc\", \"fooChannel\")",
       started(ifc)});
}

TEST_P(CreatingAService, ThatShouldBeTheRegistryAndIsNot_SaysSoAndGoesOn) {
  offerService("libfoo.so", "createFoo");
  EXPECT_NE(create("fooChannel", "ServiceRegistryIfc"), nullptr);
  const std::string ifc = "ServiceRegistryIfc";
  expectTraceButEndOfThreader(
      {made("Service#1", "fooChannel", ifc), recorded("Service#1", ifc),
       initialised("Service#1", ifc),
       error("ServiceConfigurator::createServiceExecutor() svcRegistry not found, interface:'%s' "
             "not registered",
             "ServiceRegistryIfc"),
       started(ifc)});
}

TEST_P(CreatingAService, OfTheRegistrysNameAndAnother_IsAServiceLikeOthers) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc OtherIfc";
  create("fooChannel", ifc);
  expectTraceButEndOfThreader(
      {made("RegistryService#1", "fooChannel", ifc), recorded("RegistryService#1", ifc), lookedUp(),
       "RegistryProxy#1.registerInterface(\"ServiceRegistryIfc OtherIfc\", \"fooChannel\")",
       initialised("RegistryService#1", ifc), started(ifc)});
}

TEST_P(CreatingAService, OfAHeartbeatInterface_StartsTheMonitoring) {
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "HeartbeatServiceIfc";
  create("fooChannel", ifc);
  expectTraceButEndOfThreader(
      {made("Service#1", "fooChannel", ifc), recorded("Service#1", ifc), lookedUp(),
       error(kNoRegistry), initialised("Service#1", ifc), "curID()",
       "TraceLog.logPMon_start(4711, \"fooChannel\", 0, null, null, true)", started(ifc)});
}

TEST_P(CreatingAService, OfAListThatContainsTheHeartbeatsName_StartsTheMonitoring) {
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "FooIfc MyHeartbeatServiceIfc2 BarIfc";
  create("fooChannel", ifc);
  expectTraceButEndOfThreader(
      {made("Service#1", "fooChannel", ifc), recorded("Service#1", ifc), lookedUp(),
       error(kNoRegistry), initialised("Service#1", ifc), "curID()",
       "TraceLog.logPMon_start(4711, \"fooChannel\", 0, null, null, true)", started(ifc)});
}

TEST_P(CreatingAService, OfAHeartbeatWithoutAChannel_StartsNoMonitoring) {
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "HeartbeatServiceIfc";
  create("", ifc);
  expectTraceButEndOfThreader({made("Service#1", "", ifc), recorded("Service#1", ifc), lookedUp(),
                               error(kNoRegistry), initialised("Service#1", ifc), started(ifc)});
}

TEST_P(CreatingAService, WhoseLibraryIsMissing_IsReportedAndGivesNull) {
  Platform::library("libfoo.so").error = "cannot open it";
  EXPECT_EQ(create("fooChannel", "FooIfc"), nullptr);
  expectTrace({progress("Opening Lib: '%s'", "libfoo.so"), "Dll#1 = Dll(\"libfoo.so\")",
               "Dll#1.error() -> \"cannot open it\"",
               error("Error opening library '%s' - '%s'", "libfoo.so", "cannot open it"),
               printed("ServiceConfigurator::createServiceExecutor() Error opening library "
                       "'libfoo.so' - 'cannot open it'"),
               "~Dll#1"});
}

TEST_P(CreatingAService, WhoseCreatorIsMissing_IsReportedAndGivesNull) {
  // The address that comes with the failure is not used.
  offerService("libfoo.so", "createFoo");
  Platform::library("libfoo.so").symbols["createFoo"].error = "no symbol";
  EXPECT_EQ(create("fooChannel", "FooIfc"), nullptr);
  expectTrace(
      {progress("Opening Lib: '%s'", "libfoo.so"), opened("Dll#1", "libfoo.so"),
       progress("Resolving symbol: '%s'", "createFoo"), "Dll#1.symbol(\"createFoo\")",
       "Dll#1.error() -> \"no symbol\"", error("Error resolving symbol - '%s'", "no symbol"),
       printed("ServiceConfigurator::createServiceExecutor() Error resolving symbol - 'no symbol'"),
       "~Dll#1"});
}

TEST_P(CreatingAService, WhoseCreatorGivesNull_DeletesLibraryAndExecutorAndAsksNobody) {
  offerNoService("libfoo.so", "createFoo");
  EXPECT_EQ(create("fooChannel", "FooIfc"), nullptr);
  expectTrace(
      {made("null", "fooChannel", "FooIfc"), error(kNullService), "~Dll#1", "~ServiceExecutor#1"});
}

TEST_P(CreatingAService, WhoseCreatorGivesNullForTheRegistry_IsTheSame) {
  offerNoService("libfoo.so", "createFoo");
  EXPECT_EQ(create("fooChannel", "ServiceRegistryIfc"), nullptr);
  expectTrace({made("null", "fooChannel", "ServiceRegistryIfc"), error(kNullService), "~Dll#1",
               "~ServiceExecutor#1"});
}

TEST_P(CreatingAService, WhoseInitThrows_LetsTheExceptionPassAndKeepsItRecorded) {
  offerService("libfoo.so", "createFoo");
  Platform::once("Service#1.init(", [] { throw std::runtime_error("no init"); });
  EXPECT_THROW(create("fooChannel", "FooIfc"), std::runtime_error);
  expectTrace({made("Service#1", "fooChannel", "FooIfc"), recorded("Service#1", "FooIfc"),
               lookedUp(), error(kNoRegistry),
               progress("Service Configurator: Calling init ifc = '%s'", "FooIfc"),
               "clock_gettime(CLOCK_MONOTONIC)", "Service#1.init(SvcRTEContext)"});
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  std::string ifc = "FooIfc";
  EXPECT_EQ(fakes::Objects::name(inner.findService(ifc, "fooChannel")), "Service#1");
}

TEST_P(CreatingAService, ThatIsTheRegistryAndWhoseInitThrows_IsNotAnnounced) {
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  Platform::once("RegistryService#1.init(", [] { throw std::runtime_error("no init"); });
  const std::string ifc = "ServiceRegistryIfc";
  EXPECT_THROW(create("fooChannel", ifc), std::runtime_error);
  expectTrace({made("RegistryService#1", "fooChannel", ifc), recorded("RegistryService#1", ifc),
               progress("Service Configurator: Calling init ifc = '%s'", ifc),
               "clock_gettime(CLOCK_MONOTONIC)", "RegistryService#1.init(SvcRTEContext)"});
}

TEST_P(CreatingAService, WhoseCreatorThrows_LeavesTheLibraryOpenAndMakesNothing) {
  offer("libfoo.so", "createFoo",
        fakes::Creators::service([]() -> Service* { throw std::runtime_error("no service"); }));
  EXPECT_THROW(create("fooChannel", "FooIfc"), std::runtime_error);
  expectTrace({progress("Opening Lib: '%s'", "libfoo.so"), opened("Dll#1", "libfoo.so"),
               progress("Resolving symbol: '%s'", "createFoo"), resolved("Dll#1", "createFoo"),
               progress("Service Configurator: Calling creator fn")});
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  leaves("Dll#1");
}

TEST_P(CreatingAService, WhoseChannelThrows_LetsTheExceptionPassAndRecordsNothing) {
  offerService("libfoo.so", "createFoo");
  Platform::once("CommsChannel#1 = ", [] { throw std::runtime_error("no channel"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { create("fooChannel", "FooIfc"); }),
            "no channel");
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("repository."))));
  leaves("Dll#1");
  leaves("Service#1");
}

TEST_P(CreatingAService, WhoseExecutorThrows_LetsTheExceptionPassAndRecordsNothing) {
  offerService("libfoo.so", "createFoo");
  Platform::once("ServiceExecutor#1 = ", [] { throw std::runtime_error("no executor"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { create("fooChannel", "FooIfc"); }),
            "no executor");
  EXPECT_THAT(Trace::lines(), testing::Not(testing::Contains(testing::HasSubstr("repository."))));
  for (const char* name : {"Dll#1", "Service#1", "CommsChannel#1"}) leaves(name);
}

TEST_P(CreatingAService, WhoseAnnouncementThrows_StaysRecordedWithoutItsInit) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService("libfoo.so", "createFoo");
  Platform::once("RegistryProxy#1.registerInterface(",
                 [] { throw std::runtime_error("no registry"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { create("fooChannel", "FooIfc"); }),
            "no registry");
  expectTrace({made("Service#1", "fooChannel", "FooIfc"), recorded("Service#1", "FooIfc"),
               lookedUp(), "RegistryProxy#1.registerInterface(\"FooIfc\", \"fooChannel\")"});
}

TEST_P(CreatingAService, ThatIsTheRegistryAndWhoseAnnouncementThrows_IsInitialisedButNotStarted) {
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  Platform::once("RegistryService#1.registerInterface(",
                 [] { throw std::runtime_error("no registry"); });
  std::string ifc = "ServiceRegistryIfc";
  EXPECT_EQ(messageOf<std::runtime_error>([&] { create("fooChannel", ifc); }), "no registry");
  expectTrace({made("RegistryService#1", "fooChannel", ifc), recorded("RegistryService#1", ifc),
               initialised("RegistryService#1", ifc),
               "RegistryService#1.registerInterface(\"ServiceRegistryIfc\", \"fooChannel\")"});
  EXPECT_EQ(fakes::Objects::name(inner.findService(ifc, "fooChannel")), "RegistryService#1");
}

TEST_P(CreatingAService, WhoseThreadCannotBeStarted_LetsTheExceptionPassAndStaysRecorded) {
  offerService("libfoo.so", "createFoo");
  Platform::once("ServiceExecutor#1.startThread(", [] { throw std::runtime_error("no thread"); });
  std::string ifc = "FooIfc";
  EXPECT_EQ(messageOf<std::runtime_error>([&] { create("fooChannel", ifc); }), "no thread");
  expectTrace({made("Service#1", "fooChannel", ifc), recorded("Service#1", ifc), lookedUp(),
               error(kNoRegistry), initialised("Service#1", ifc),
               progress("Service Configurator: Service created successfully ifc = '%s'", ifc),
               progress("Service Configurator: Starting Service Executor"),
               "Threader#1 = Threader()", "ServiceExecutor#1.startThread(Threader#1)",
               "~Threader#1"});
  EXPECT_EQ(fakes::Objects::name(inner.findService(ifc, "fooChannel")), "Service#1");
}

INSTANTIATE_TEST_SUITE_P(AtLevel, CreatingAService, testing::Values(4, 5));

/** How long an `init` took, and how the log shows it. */
struct Duration {
  std::int64_t startSeconds;
  std::int64_t startNanoseconds;
  std::int64_t took;
  const char* shown;
};

class TheTimeOfAnInit : public ConfiguratorTest, public testing::WithParamInterface<Duration> {
 protected:
  TheTimeOfAnInit() {
    sut->services["ServiceRegistryIfc"] = nullptr;
    offerService("libfoo.so", "createFoo");
    Platform::setMonotonic(GetParam().startSeconds, GetParam().startNanoseconds);
    Platform::once("Service#1.init(", [] { Platform::advance(GetParam().took); });
  }

  static void expectShown() {
    std::vector<std::string> messages;
    for (const fakes::Event& event : Trace::events()) {
      if (event.message.find("init() took") != std::string::npos) messages.push_back(event.message);
    }
    EXPECT_THAT(messages,
                testing::ElementsAre(std::string("Service Configurator: For ifc = 'FooIfc' init() "
                                                 "took ") +
                                     GetParam().shown + " using CLOCK_MONOTONIC"));
  }
};

TEST_P(TheTimeOfAnInit, OfAnImmediateService_IsShownWithoutPadding) {
  sut->createServiceExecutor("libfoo.so", "createFoo", "c", "FooIfc", true);
  expectShown();
}

TEST_P(TheTimeOfAnInit, OfALegacyService_IsShownWithoutPadding) {
  sut->createService("libfoo.so", "createFoo", "FooIfc");
  expectShown();
}

TEST_P(TheTimeOfAnInit, OfALazyService_IsShownWithoutPadding) {
  CommsChannel own("c", nullptr);
  sut->initialiseService(nullptr, "libfoo.so", "createFoo", &own, "FooIfc");
  expectShown();
  end();
}

constexpr std::int64_t kMillisecond = 1'000'000;

INSTANTIATE_TEST_SUITE_P(
    Each, TheTimeOfAnInit,
    testing::Values(Duration{10, 0, 0, "0.0s"}, Duration{10, 0, 1005 * kMillisecond, "1.5s"},
                    Duration{10, 0, 1500 * kMillisecond, "1.500s"},
                    Duration{10, 0, 2045 * kMillisecond, "2.45s"},
                    // The nanoseconds of the end are less than those of the start.
                    Duration{10, 999'999'999, 2045 * kMillisecond, "2.45s"},
                    Duration{10, 500'000'000, 500 * kMillisecond, "0.500s"},
                    Duration{10, 500'000'000, 1499 * kMillisecond, "1.499s"},
                    Duration{10, 999'999'999, 1, "0.0s"}, Duration{10, 0, 999'999, "0.0s"},
                    Duration{10, 0, 999'999'999, "0.999s"}, Duration{10, 1, 999'999'999, "0.999s"},
                    Duration{10, 0, 100'000 * kMillisecond, "100.0s"}));

}  // namespace
}  // namespace zerva::conformance
