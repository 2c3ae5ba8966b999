#include <stdexcept>

#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

/** At level 5 the progress is seen, at 4 it is not. No registry is asked by any of these. */
class CreatingALegacyService : public ConfiguratorTest, public testing::WithParamInterface<int> {
 protected:
  CreatingALegacyService() { logLevel(GetParam()); }

  Service* create(const std::string& ifc) {
    return sut->createService("libold.so", "createOld", ifc);
  }

  static std::string made() {
    return asText({progress("%s", "Opening library - libold.so"), opened("Dll#1", "libold.so"),
                   progress("%s", "Resolving symbol - createOld"), resolved("Dll#1", "createOld"),
                   progress("Service Configurator: Calling creator fn"), "createOld()",
                   progress("Service Configurator: Calling init")});
  }

  static std::string initialised(const std::string& ifc, const std::string& service = "Service#1") {
    return asText({"repository.addService(" + service + ", Dll#1, " + fakes::inQuotes(ifc) + ")",
                   "clock_gettime(CLOCK_MONOTONIC)", service + ".init(SvcRTEContext)",
                   "clock_gettime(CLOCK_MONOTONIC)", initTook(ifc)});
  }

  static std::string spawned(const std::string& service = "Service#1") {
    return asText({progress("Service Configurator: Creating thread"), "Threader#1 = Threader()",
                   "Threader#1.spawn(" + service + ", \"\", 1, 0)", "~Threader#1"});
  }
};

TEST_P(CreatingALegacyService, RecordsInitialisesAndStartsItOnAThreadWithoutAName) {
  offerService("libold.so", "createOld");
  Service* service = create("OldIfc ");
  expectTrace({made(), initialised("OldIfc "), spawned()});
  EXPECT_EQ(fakes::Objects::name(service), "Service#1");
}

TEST_P(CreatingALegacyService, OfTheRegistrysInterface_AsksNoRegistry) {
  offerService<fakes::RecordingRegistryService>("libold.so", "createOld");
  create("ServiceRegistryIfc");
  expectTrace({made(), initialised("ServiceRegistryIfc", "RegistryService#1"),
               spawned("RegistryService#1")});
}

TEST_P(CreatingALegacyService, OfAHeartbeatInterface_HasNoChannelToMonitorUnder) {
  offerService("libold.so", "createOld");
  create("HeartbeatServiceIfc");
  expectTrace({made(), initialised("HeartbeatServiceIfc"), "configurator.findChannel(Service#1)",
               spawned()});
}

TEST_P(CreatingALegacyService, OfAListWithAHeartbeat_MonitorsUnderTheNameThatIsFound) {
  sut->channelName = "overridden";
  offerService("libold.so", "createOld");
  const std::string ifc = "A MyHeartbeatServiceIfc2 B";
  create(ifc);
  expectTrace({made(), initialised(ifc), "configurator.findChannel(Service#1)", "curID()",
               "TraceLog.logPMon_start(4711, \"overridden\", 0, null, null, true)", spawned()});
}

TEST_P(CreatingALegacyService, WhoseLibraryIsMissing_IsReportedAndGivesNull) {
  Platform::library("libold.so").error = "cannot open it";
  EXPECT_EQ(create("OldIfc"), nullptr);
  const std::string text = "Error opening library libold.so - cannot open it";
  expectTrace({progress("%s", "Opening library - libold.so"), "Dll#1 = Dll(\"libold.so\")",
               "Dll#1.error() -> \"cannot open it\"", error("%s", text),
               printed("ServiceConfigurator::createService() " + text), "~Dll#1"});
}

TEST_P(CreatingALegacyService, WhoseCreatorIsMissing_IsReportedAndGivesNull) {
  offerService("libold.so", "createOld");
  Platform::library("libold.so").symbols["createOld"].error = "no symbol";
  EXPECT_EQ(create("OldIfc"), nullptr);
  const std::string text = "Error resolving symbol - no symbol";
  expectTrace({progress("%s", "Opening library - libold.so"), opened("Dll#1", "libold.so"),
               progress("%s", "Resolving symbol - createOld"), "Dll#1.symbol(\"createOld\")",
               "Dll#1.error() -> \"no symbol\"", error("%s", text),
               printed("ServiceConfigurator::createService() " + text), "~Dll#1"});
}

TEST_P(CreatingALegacyService, WhoseCreatorGivesNull_TellsOfTheInitAllTheSame) {
  offerNoService("libold.so", "createOld");
  EXPECT_EQ(create("OldIfc"), nullptr);
  expectTrace({made(),
               error("ServiceConfigurator::createService() : Error while initializing service "
                     "(NULL pointer returned)."),
               "~Dll#1"});
}

TEST_P(CreatingALegacyService, WhoseCreatorThrows_LeavesTheLibraryOpenAndRecordsNothing) {
  offer("libold.so", "createOld",
        fakes::Creators::service([]() -> Service* { throw std::runtime_error("no service"); }));
  EXPECT_THROW(create("OldIfc"), std::runtime_error);
  expectTrace({progress("%s", "Opening library - libold.so"), opened("Dll#1", "libold.so"),
               progress("%s", "Resolving symbol - createOld"), resolved("Dll#1", "createOld"),
               progress("Service Configurator: Calling creator fn")});
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  leaves("Dll#1");
}

TEST_P(CreatingALegacyService, WhoseInitThrows_KeepsItRecordedAndStartsNoThread) {
  offerService("libold.so", "createOld");
  Platform::once("Service#1.init(", [] { throw std::runtime_error("no init"); });
  EXPECT_THROW(create("HeartbeatServiceIfc"), std::runtime_error);
  expectTrace({made(), "repository.addService(Service#1, Dll#1, \"HeartbeatServiceIfc\")",
               "clock_gettime(CLOCK_MONOTONIC)", "Service#1.init(SvcRTEContext)"});
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  std::string ifc = "HeartbeatServiceIfc";
  EXPECT_EQ(fakes::Objects::name(inner.findService(ifc, "")), "Service#1");
}

TEST_P(CreatingALegacyService, OfABlankForAnInterface_IsStartedAndRecordedNowhere) {
  offerService("libold.so", "createOld");
  Service* service = create(" ");
  expectTrace({made(), initialised(" "), spawned()});
  EXPECT_EQ(fakes::Objects::name(service), "Service#1");
  EXPECT_FALSE(inner.containsService(service));
  // Nobody deletes them.
  leaves("Service#1");
  leaves("Dll#1");
}

TEST_P(CreatingALegacyService, WhoseThreadDoesNotStart_IsGivenAndRecordedAllTheSame) {
  offerService("libold.so", "createOld");
  Platform::answer("Threader#1.spawn(", 0);
  Service* service = create("OldIfc");
  expectTrace({made(), initialised("OldIfc"), spawned()});
  EXPECT_EQ(fakes::Objects::name(service), "Service#1");
  EXPECT_TRUE(inner.containsService(service));
}

TEST_P(CreatingALegacyService, IsWaitedForWhenItIsDeleted) {
  offerService("libold.so", "createOld");
  create("OldIfc");
  forget();
  sut->serviceRepository->deleteAllServices();
  EXPECT_EQ(
      asText(Trace::lines(1)),
      asText({"svcMapSem.take(-1)", "Service#1.waitForThreadCompletion() [svcMapSem]",
              "~Service#1 [svcMapSem]", "~Dll#1 [svcMapSem]", "svcMapSem.give() [svcMapSem]"}));
}

INSTANTIATE_TEST_SUITE_P(AtLevel, CreatingALegacyService, testing::Values(4, 5));

}  // namespace
}  // namespace zerva::conformance
