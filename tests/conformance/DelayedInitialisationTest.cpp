#include <array>
#include <stdexcept>

#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/ServiceExecutor.h"
#include "framework/ServiceThreadPool.h"
#include "tests/conformance/ConformanceTest.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"

namespace zerva::conformance {
namespace {

/** At level 5 the progress is seen, at 4 it is not. */
class InitialisingALazyService : public ConfiguratorTest, public testing::WithParamInterface<int> {
 protected:
  InitialisingALazyService() {
    logLevel(GetParam());
    sut->services["ServiceRegistryIfc"] = nullptr;
    own = new CommsChannel("fooChannel", nullptr);
    // As the first stage leaves it; it owns the channel.
    executor = new ServiceExecutor("libfoo.so", "createFoo", "FooIfc", own, &sut->framework(),
                                   sut->threadPool, nullptr, true);
    forget();
  }

  Service* initialise(const std::string& ifc) {
    return sut->framework().initialiseService(executor, "libfoo.so", "createFoo", own, ifc);
  }

  static std::string opening() {
    return asText(
        {progress("Creating Service for second stage of delayed/lazy ServiceExecutor startup"),
         progress("%s", "Opening Lib: libfoo.so")});
  }

  static std::string created() {
    return asText({opening(), opened("Dll#1", "libfoo.so"),
                   progress("%s", "Resolving symbol: createFoo"), resolved("Dll#1", "createFoo"),
                   progress("Service Configurator: Calling creator fn"), "createFoo()"});
  }

  static std::string initialised(const std::string& service, const std::string& ifc) {
    return asText({"repository.addService(" + service +
                       ", ServiceExecutor#1, CommsChannel#1, Dll#1, " + fakes::inQuotes(ifc) + ")",
                   progress("Service Configurator: Calling init ifc = '%s'", ifc),
                   "clock_gettime(CLOCK_MONOTONIC)", service + ".init(SvcRTEContext)",
                   "clock_gettime(CLOCK_MONOTONIC)", initTook(ifc)});
  }

  static std::string successful(const std::string& ifc) {
    return progress("Service Configurator: Service created successfully ifc = '%s'", ifc);
  }

  static std::string lookedUp() { return "configurator.findService(\"ServiceRegistryIfc\")"; }
  static std::string notRegistered() {
    return error(
        "ServiceConfigurator::initialiseService() svcRegistry not found, interface:'%s' not "
        "registered",
        "ServiceRegistryIfc");
  }

  CommsChannel* own;
  ServiceExecutor* executor;
};

TEST_P(InitialisingALazyService, OfAnOrdinaryInterface_AsksNoRegistry) {
  offerService("libfoo.so", "createFoo");
  Service* service = initialise("FooIfc BarIfc");
  const std::string ifc = "FooIfc BarIfc";
  expectTrace({created(), initialised("Service#1", ifc), successful(ifc)});
  EXPECT_EQ(fakes::Objects::name(service), "Service#1");
}

TEST_P(InitialisingALazyService, ThatIsTheRegistry_AnnouncesItThroughTheRegistryFound) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc";
  initialise(ifc);
  expectTrace({created(), initialised("RegistryService#1", ifc), lookedUp(),
               "CommsChannel#1.getName()",
               "RegistryProxy#1.registerInterface(\"ServiceRegistryIfc\", \"fooChannel\")",
               successful(ifc)});
}

TEST_P(InitialisingALazyService, ThatIsTheRegistryAndIsNotFound_SaysSoAndGivesTheService) {
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc";
  EXPECT_NE(initialise(ifc), nullptr);
  expectTrace({created(), initialised("RegistryService#1", ifc), lookedUp(), notRegistered(),
               successful(ifc)});
}

TEST_P(InitialisingALazyService, ThatIsTheRegistryAndFindsNone_SaysSo) {
  fakes::RecordingProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc";
  initialise(ifc);
  expectTrace({created(), initialised("RegistryService#1", ifc), lookedUp(), notRegistered(),
               successful(ifc)});
}

TEST_P(InitialisingALazyService, OfTheRegistrysNameAndAnother_AsksNoRegistry) {
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc OtherIfc";
  initialise(ifc);
  expectTrace({created(), initialised("Service#1", ifc), successful(ifc)});
}

TEST_P(InitialisingALazyService, OfAHeartbeatInterface_MonitorsUnderTheNameOfItsChannel) {
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "FooIfc MyHeartbeatServiceIfc2";
  initialise(ifc);
  expectTrace({created(), initialised("Service#1", ifc), "configurator.findChannel(Service#1)",
               "curID()", "TraceLog.logPMon_start(4711, \"fooChannel\", 0, null, null, true)",
               successful(ifc)});
}

TEST_P(InitialisingALazyService, OfAHeartbeatInterface_AsksForTheChannelVirtually) {
  sut->channelName = "overridden";
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "HeartbeatServiceIfc";
  initialise(ifc);
  expectTrace({created(), initialised("Service#1", ifc), "configurator.findChannel(Service#1)",
               "curID()", "TraceLog.logPMon_start(4711, \"overridden\", 0, null, null, true)",
               successful(ifc)});
}

TEST_P(InitialisingALazyService, OfAHeartbeatWithoutAChannelName_StartsNoMonitoring) {
  sut->channelName = "";
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "HeartbeatServiceIfc";
  initialise(ifc);
  expectTrace({created(), initialised("Service#1", ifc), "configurator.findChannel(Service#1)",
               successful(ifc)});
}

TEST_P(InitialisingALazyService, WhoseLibraryIsMissing_IsReportedWithoutTheLibrarysName) {
  Platform::library("libfoo.so").error = "cannot open it";
  EXPECT_EQ(initialise("FooIfc"), nullptr);
  const std::string text = "Error opening library - cannot open it";
  expectTrace({opening(), "Dll#1 = Dll(\"libfoo.so\")", "Dll#1.error() -> \"cannot open it\"",
               error("%s", text), printed("ServiceConfigurator::initialiseService() " + text),
               "~Dll#1"});
}

TEST_P(InitialisingALazyService, WhoseCreatorIsMissing_IsReported) {
  offerService("libfoo.so", "createFoo");
  Platform::library("libfoo.so").symbols["createFoo"].error = "no symbol";
  EXPECT_EQ(initialise("FooIfc"), nullptr);
  const std::string text = "Error resolving symbol - no symbol";
  expectTrace({opening(), opened("Dll#1", "libfoo.so"),
               progress("%s", "Resolving symbol: createFoo"), "Dll#1.symbol(\"createFoo\")",
               "Dll#1.error() -> \"no symbol\"", error("%s", text),
               printed("ServiceConfigurator::initialiseService() " + text), "~Dll#1"});
}

TEST_P(InitialisingALazyService, WhoseCreatorGivesNull_DeletesTheLibraryOnly) {
  offerNoService("libfoo.so", "createFoo");
  EXPECT_EQ(initialise("FooIfc"), nullptr);
  expectTrace({created(),
               error("ServiceConfigurator::initialiseService() : Error while initializing service "
                     "(NULL pointer returned)."),
               "~Dll#1"});
  EXPECT_TRUE(fakes::Objects::isAlive(executor));
  EXPECT_TRUE(fakes::Objects::isAlive(own));
}

TEST_P(InitialisingALazyService, WhoseCreatorThrows_LeavesTheLibraryOpenAndRecordsNothing) {
  offer("libfoo.so", "createFoo",
        fakes::Creators::service([]() -> Service* { throw std::runtime_error("no service"); }));
  EXPECT_THROW(initialise("FooIfc"), std::runtime_error);
  expectTrace({opening(), opened("Dll#1", "libfoo.so"),
               progress("%s", "Resolving symbol: createFoo"), resolved("Dll#1", "createFoo"),
               progress("Service Configurator: Calling creator fn")});
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  EXPECT_TRUE(fakes::Objects::isAlive(executor));
  leaves("Dll#1");
}

TEST_P(InitialisingALazyService, WhoseInitThrows_KeepsItRecordedAndAnnouncesNothing) {
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  Platform::once("RegistryService#1.init(", [] { throw std::runtime_error("no init"); });
  std::string ifc = "ServiceRegistryIfc";
  EXPECT_THROW(initialise(ifc), std::runtime_error);
  expectTrace({created(),
               "repository.addService(RegistryService#1, ServiceExecutor#1, CommsChannel#1, "
               "Dll#1, \"ServiceRegistryIfc\")",
               progress("Service Configurator: Calling init ifc = '%s'", ifc),
               "clock_gettime(CLOCK_MONOTONIC)", "RegistryService#1.init(SvcRTEContext)"});
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  EXPECT_EQ(fakes::Objects::name(inner.findService(ifc, "fooChannel")), "RegistryService#1");
}

TEST_P(InitialisingALazyService, ThatIsTheRegistryAndWhoseAnnouncementThrows_StaysRecorded) {
  fakes::RecordingRegistryProxy registry;
  sut->services["ServiceRegistryIfc"] = &registry;
  forget();
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  Platform::once("RegistryProxy#1.registerInterface(",
                 [] { throw std::runtime_error("no registry"); });
  std::string ifc = "ServiceRegistryIfc";
  EXPECT_EQ(messageOf<std::runtime_error>([&] { initialise(ifc); }), "no registry");
  expectTrace({created(), initialised("RegistryService#1", ifc), lookedUp(),
               "CommsChannel#1.getName()",
               "RegistryProxy#1.registerInterface(\"ServiceRegistryIfc\", \"fooChannel\")"});
  EXPECT_EQ(fakes::Objects::name(inner.findService(ifc, "fooChannel")), "RegistryService#1");
}

TEST_P(InitialisingALazyService, OfNoInterface_IsInitialisedAndRecordedNowhere) {
  offerService("libfoo.so", "createFoo");
  Service* service = initialise("");
  expectTrace({created(), initialised("Service#1", ""), successful("")});
  EXPECT_EQ(fakes::Objects::name(service), "Service#1");
  EXPECT_FALSE(inner.containsService(service));
  // Nobody deletes them; the executor is the pool's.
  leaves("Service#1");
  leaves("Dll#1");
}

/** The channel is read for the registry's announcement alone. */
TEST_P(InitialisingALazyService, OnANullChannel_MakesAnOrdinaryOne) {
  offerService("libfoo.so", "createFoo");
  const std::string ifc = "HeartbeatServiceIfc";
  EXPECT_NE(sut->framework().initialiseService(executor, "libfoo.so", "createFoo", nullptr, ifc),
            nullptr);
  expectTrace({created(),
               "repository.addService(Service#1, ServiceExecutor#1, null, Dll#1, "
               "\"HeartbeatServiceIfc\")",
               progress("Service Configurator: Calling init ifc = '%s'", ifc),
               "clock_gettime(CLOCK_MONOTONIC)", "Service#1.init(SvcRTEContext)",
               "clock_gettime(CLOCK_MONOTONIC)", initTook(ifc),
               "configurator.findChannel(Service#1)", successful(ifc)});
}

TEST_P(InitialisingALazyService, OnANullChannelThatIsTheRegistryAndIsNotFound_SaysSo) {
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc";
  EXPECT_NE(sut->framework().initialiseService(executor, "libfoo.so", "createFoo", nullptr, ifc),
            nullptr);
  expectTrace({created(),
               "repository.addService(RegistryService#1, ServiceExecutor#1, null, Dll#1, "
               "\"ServiceRegistryIfc\")",
               progress("Service Configurator: Calling init ifc = '%s'", ifc),
               "clock_gettime(CLOCK_MONOTONIC)", "RegistryService#1.init(SvcRTEContext)",
               "clock_gettime(CLOCK_MONOTONIC)", initTook(ifc), lookedUp(), notRegistered(),
               successful(ifc)});
}

TEST_P(InitialisingALazyService, ThatIsTheRegistry_FindsItAsAnExecutable) {
  fakes::RecordingRegistryProxy registry;
  sut->executables["ServiceRegistryIfc"] = &registry;
  forget();
  offerService<fakes::RecordingRegistryService>("libfoo.so", "createFoo");
  const std::string ifc = "ServiceRegistryIfc";
  initialise(ifc);
  expectTrace({created(), initialised("RegistryService#1", ifc),
               "configurator.findExecutable(\"ServiceRegistryIfc\")", "CommsChannel#1.getName()",
               "RegistryProxy#1.registerInterface(\"ServiceRegistryIfc\", \"fooChannel\")",
               successful(ifc)});
}

TEST_P(InitialisingALazyService, WhileAnotherIsInitialised_WaitsForNobody) {
  offerService("libfoo.so", "createFoo");
  offerService("libbar.so", "createBar");
  Service* inside = nullptr;
  Platform::once("Service#1.init(", [&] {
    EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
    inside = sut->initialiseService(nullptr, "libbar.so", "createBar", nullptr, "BarIfc");
  });
  Service* outside = initialise("FooIfc");
  EXPECT_EQ(fakes::Objects::name(outside), "Service#1");
  EXPECT_EQ(fakes::Objects::name(inside), "Service#2");
}

TEST_P(InitialisingALazyService, WithAPercentSignInItsNames_LogsThemAsTheyAre) {
  const std::string lib = "lib%s.so";
  EXPECT_EQ(sut->framework().initialiseService(executor, lib, "c", own, "FooIfc"), nullptr);
  const std::string text = "Error opening library - lib%s.so: no such library";
  expectTrace(
      {progress("Creating Service for second stage of delayed/lazy ServiceExecutor startup"),
       progress("%s", "Opening Lib: lib%s.so"), "Dll#1 = Dll(\"lib%s.so\")",
       "Dll#1.error() -> \"lib%s.so: no such library\"", error("%s", text),
       printed("ServiceConfigurator::initialiseService() " + text), "~Dll#1"});
}

INSTANTIATE_TEST_SUITE_P(AtLevel, InitialisingALazyService, testing::Values(4, 5));

class ALazyService : public ConfiguratorTest {
 protected:
  ALazyService() { sut->services["ServiceRegistryIfc"] = nullptr; }
};

// Each `init` ends only when the other one has begun.
TEST_F(ALazyService, AndAnother_AreInitialisedAtTheSameTime) {
  fakes::SemaphoreTable::letThreadsWait();
  offerService("libfoo.so", "createFoo");
  Barrier inside(2);
  for (const char* call : {"Service#1.init(", "Service#2.init("}) {
    Platform::once(call, [&inside] { inside.arriveAndWait(); });
  }
  std::array<Service*, 2> services{};
  concurrently(2, [&](std::size_t thread) {
    services.at(thread) = sut->initialiseService(nullptr, "libfoo.so", "createFoo", nullptr,
                                                 "Ifc" + std::to_string(thread));
  });
  for (std::size_t thread : {0, 1}) {
    std::string ifc = "Ifc" + std::to_string(thread);
    EXPECT_EQ(inner.findService(ifc, ""), services.at(thread));
    EXPECT_NE(services.at(thread), nullptr);
  }
}

TEST_F(ALazyService, IsMadeByItsFirstMessage) {
  offerService("libfoo.so", "createFoo");
  sut->createServiceExecutorDelayedInitialisation("libfoo.so", "createFoo", "fooChannel", "FooIfc",
                                                  true);
  CommsChannelDataContainerMessage message;
  message.setChannel("fooChannel");
  message.setData("hello");
  message.setRequestId(1);
  channel.send(message);
  channel.receiveReply(message, 1);
  EXPECT_EQ(message.getData(), "reply to hello");
  EXPECT_THAT(Trace::lines(2), testing::Contains("createFoo()"));
}

}  // namespace
}  // namespace zerva::conformance
