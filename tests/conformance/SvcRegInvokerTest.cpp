#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

const char* const kLibrary = "libServiceRegistry.so";
const char* const kCreator = "createServiceRegistryInvoker";

/** At level 4 the summary is seen, at 3 it is not. */
class TheRegistryInvoker : public ConfiguratorTest, public testing::WithParamInterface<int> {
 protected:
  TheRegistryInvoker() { logLevel(GetParam()); }

  static std::string summary() {
    return guarded(
        4, logLine("src/ServiceConfigurator", 4,
                   "Service Registry Invoker created:\n"
                   "   Created from library:          %s\n"
                   "   Created from creator Function: %s\n"
                   "   Supporting interface:          %s\n"
                   "   Supporting protocols:          %s, %s",
                   kLibrary, kCreator, "ServiceRegistryIfc", "zerva_svc_xml", "zerva_simple_rmi"));
  }

  static Lines recorded(const std::string& invoker) {
    return {opened("Dll#1", kLibrary),
            resolved("Dll#1", kCreator),
            std::string(kCreator) + "()",
            "repository.addServiceInvoker(" + invoker +
                ", Dll#1, \"ServiceRegistryIfc\", \"zerva_svc_xml\")",
            "repository.addServiceInvoker(" + invoker +
                ", Dll#1, \"ServiceRegistryIfc\", \"zerva_simple_rmi\")",
            summary()};
  }

  std::size_t recordedInvokers() {
    std::size_t count = 0;
    std::string interfaceName = "ServiceRegistryIfc";
    for (std::string protocol : {"zerva_svc_xml", "zerva_simple_rmi"}) {
      if (inner.findServiceInvoker(interfaceName, protocol) != nullptr) ++count;
    }
    return count;
  }
};

TEST_P(TheRegistryInvoker, IsRecordedUnderBothProtocols) {
  offerInvoker(kLibrary, kCreator);
  sut->createSvcRegInvoker();
  expectTrace(recorded("Invoker#1"));
  EXPECT_EQ(recordedInvokers(), 2u);
}

TEST_P(TheRegistryInvoker, OfBothProtocols_IsOneObject) {
  offerInvoker(kLibrary, kCreator);
  sut->createSvcRegInvoker();
  std::string interfaceName = "ServiceRegistryIfc";
  std::string xml = "zerva_svc_xml";
  std::string simple = "zerva_simple_rmi";
  EXPECT_EQ(inner.findServiceInvoker(interfaceName, xml),
            inner.findServiceInvoker(interfaceName, simple));
}

TEST_P(TheRegistryInvoker, ThatIsNull_IsRecordedAllTheSame) {
  offerNoInvoker(kLibrary, kCreator);
  sut->createSvcRegInvoker();
  expectTrace(recorded("null"));
}

TEST_P(TheRegistryInvoker, WhoseLibraryIsMissing_IsReportedAndRecordedNowhere) {
  Platform::library(kLibrary).error = "cannot open it";
  sut->createSvcRegInvoker();
  expectTrace({"Dll#1 = Dll(\"libServiceRegistry.so\")", "Dll#1.error() -> \"cannot open it\"",
               error("Unable to open 'service registry invoker' library '%s': '%s'", kLibrary,
                     "cannot open it"),
               printed("Unable to open 'service registry invoker' library "
                       "'libServiceRegistry.so': 'cannot open it'"),
               "~Dll#1"});
  EXPECT_EQ(recordedInvokers(), 0u);
}

TEST_P(TheRegistryInvoker, WhoseCreatorIsMissing_IsReportedAndRecordedNowhere) {
  // An address is no sign of success.
  offerInvoker(kLibrary, kCreator);
  Platform::library(kLibrary).symbols[kCreator].error = "no symbol";
  sut->createSvcRegInvoker();
  expectTrace({opened("Dll#1", kLibrary), "Dll#1.symbol(\"createServiceRegistryInvoker\")",
               "Dll#1.error() -> \"no symbol\"",
               error("Error resolving 'service registry invoker' creator function '%s': '%s'",
                     kCreator, "no symbol"),
               printed("Error resolving 'service registry invoker' creator function "
                       "'createServiceRegistryInvoker': 'no symbol'"),
               "~Dll#1"});
  EXPECT_EQ(recordedInvokers(), 0u);
}

TEST_P(TheRegistryInvoker, IsMadeByConstruction) {
  offerInvoker(kLibrary, kCreator);
  end();
  fakes::Objects::renumber();
  forget();
  const auto another = makeRecorded<OpenConfigurator>(&channel, &repository);
  Lines expected = {"ServiceThreadPool#1 = ServiceThreadPool(50, null)",
                    "FwkTimer#1 = FwkTimer(FrameworkContext)", "proxySem = Semaphore(1, 1, false)",
                    "invokerSem = Semaphore(1, 1, false)", "registrySem = Semaphore(1, 1, false)"};
  const Lines made = recorded("Invoker#1");
  expected.insert(expected.end(), made.begin(), made.end());
  expectTrace(expected);
}

TEST_P(TheRegistryInvoker, IsDeletedOnceWithTheConfigurator) {
  offerInvoker(kLibrary, kCreator);
  sut->createSvcRegInvoker();
  forget();
  end();
  EXPECT_EQ(recordedInvokers(), 0u);
  const Lines nested = Trace::lines(1);
  EXPECT_EQ(std::count(nested.begin(), nested.end(), "~Invoker#1 [invokerMapSem]"), 1);
  EXPECT_EQ(std::count(nested.begin(), nested.end(), "~Dll#1 [invokerMapSem]"), 1);
}

/** A repository of the host's own that makes use of getting its texts by reference. */
class Overwriting : public fakes::RecordingRepository {
 public:
  using RecordingRepository::RecordingRepository;
  void addServiceInvoker(Invoker* invoker, Dll* dll, std::string& interfaceName,
                         std::string& protocol) override {
    RecordingRepository::addServiceInvoker(invoker, dll, interfaceName, protocol);
    interfaceName = "overwritten";
    protocol = "overwritten";
  }
};

TEST_P(TheRegistryInvoker, InARepositoryThatOverwritesItsTexts_IsRecordedWithCopies) {
  Overwriting other(inner);
  const auto another = make<OpenConfigurator>(&channel, &other);
  offerInvoker(kLibrary, kCreator);
  another->createSvcRegInvoker();
  expectTrace(recorded("Invoker#1"));
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_INTERFACE, "ServiceRegistryIfc");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL1, "zerva_svc_xml");
}

INSTANTIATE_TEST_SUITE_P(AtLevel, TheRegistryInvoker, testing::Values(3, 4));

}  // namespace
}  // namespace zerva::conformance
