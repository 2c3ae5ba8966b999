// The six ways in which a library is loaded have the same rules: what `error` gives decides, the
// library goes at once, and the failure is told once in the log and once on standard output.

#include <algorithm>
#include <stdexcept>

#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

// What a name or a cause holds is never taken for a format.
const char* const kLib = "lib%s%n.so";
const char* const kCreator = "create%d%n";
const char* const kIfc = "%sIfc%n";
const char* const kRegistryLib = "libServiceRegistry.so";
const char* const kRegistryCreator = "createServiceRegistryInvoker";

/** One way of loading a library, and what it says. */
struct Loader {
  const char* name;
  const char* lib;
  const char* creator;
  /** @returns what was made of the library, or null. */
  const void* (*load)(TestConfigurator& sut);
  /** What comes before a failure's text on standard output. */
  std::string prefix;
  std::string (*opening)(const std::string& cause);
  std::string (*resolving)(const std::string& cause);
  /** What is logged of names, as it is read, when all goes well. */
  Lines progress;
  void (*offer)(const std::string& lib, const std::string& creator);
};

class Offers : public HostTest {
 public:
  using HostTest::offerInvoker;
  static void service(const std::string& lib, const std::string& creator) {
    offerService(lib, creator);
  }
  static void proxy(const std::string& lib, const std::string& creator) {
    offerProxy(lib, creator);
  }
};

const void* loadImmediate(TestConfigurator& sut) {
  return sut.createServiceExecutor(kLib, kCreator, "/svc/%s", kIfc, true);
}

const void* loadLegacy(TestConfigurator& sut) { return sut.createService(kLib, kCreator, kIfc); }

const void* loadLazy(TestConfigurator& sut) {
  return sut.initialiseService(nullptr, kLib, kCreator, nullptr, kIfc);
}

const void* loadProxy(TestConfigurator& sut) {
  std::string lib = kLib;
  std::string creator = kCreator;
  std::string svcChannel = "/svc/%s";
  std::string ifc = kIfc;
  std::string qualifier = "%s";
  return sut.initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
}

const void* loadInvoker(TestConfigurator& sut) {
  std::string ifc = kIfc;
  std::string protocol = "%stcp";
  return sut.findInvoker(ifc, protocol);
}

const void* loadRegistryInvoker(TestConfigurator& sut) {
  sut.createSvcRegInvoker();
  std::string ifc = "ServiceRegistryIfc";
  std::string protocol = "zerva_svc_xml";
  return sut.serviceRepository->findServiceInvoker(ifc, protocol);
}

std::string symbolText(const std::string& cause) { return "Error resolving symbol - " + cause; }

const Loader kImmediate{
    "Immediate",
    kLib,
    kCreator,
    loadImmediate,
    "ServiceConfigurator::createServiceExecutor() ",
    [](const std::string& cause) {
      return std::string("Error opening library '") + kLib + "' - '" + cause + "'";
    },
    [](const std::string& cause) { return symbolText("'" + cause + "'"); },
    {"Opening Lib: 'lib%s%n.so'", "Resolving symbol: 'create%d%n'",
     "Service Configurator: Creating CommsChannel - '/svc/%s'",
     "Service Configurator: Calling init ifc = '%sIfc%n'",
     "Service Configurator: For ifc = '%sIfc%n' init() took 0.0s using CLOCK_MONOTONIC",
     "Service Configurator: Service created successfully ifc = '%sIfc%n'"},
    Offers::service};

const Loader kLegacy{
    "Legacy",
    kLib,
    kCreator,
    loadLegacy,
    "ServiceConfigurator::createService() ",
    [](const std::string& cause) {
      return std::string("Error opening library ") + kLib + " - " + cause;
    },
    symbolText,
    {"Opening library - lib%s%n.so", "Resolving symbol - create%d%n",
     "Service Configurator: For ifc = '%sIfc%n' init() took 0.0s using CLOCK_MONOTONIC"},
    Offers::service};

const Loader kLazy{
    "Lazy",
    kLib,
    kCreator,
    loadLazy,
    "ServiceConfigurator::initialiseService() ",
    [](const std::string& cause) { return "Error opening library - " + cause; },
    symbolText,
    {"Opening Lib: lib%s%n.so", "Resolving symbol: create%d%n",
     "Service Configurator: Calling init ifc = '%sIfc%n'",
     "Service Configurator: For ifc = '%sIfc%n' init() took 0.0s using CLOCK_MONOTONIC",
     "Service Configurator: Service created successfully ifc = '%sIfc%n'"},
    Offers::service};

const Loader kProxy{
    "Proxy",
    kLib,
    kCreator,
    loadProxy,
    "",
    [](const std::string& cause) {
      return std::string(
                 "ServiceConfigurator::initProxyAndAddToRepository() failed on opening Dll (") +
             kLib + ") error: '" + cause + "'";
    },
    [](const std::string& cause) {
      return std::string(
                 "ServiceConfigurator::initProxyAndAddToRepository() failed on fetching symbol (") +
             kCreator + ") from (" + kLib + ") error: '" + cause + "'";
    },
    {"Proxy info found- Lib: lib%s%n.so Cr: create%d%n Comm: /svc/%s"},
    Offers::proxy};

const Loader kInvoker{
    "Invoker",
    kLib,
    kCreator,
    loadInvoker,
    "",
    [](const std::string& cause) {
      return std::string("ServiceConfigurator::findInvoker() failed on opening Dll (") + kLib +
             ") error: '" + cause + "'";
    },
    [](const std::string& cause) {
      return std::string("ServiceConfigurator::findInvoker() failed on fetching symbol (") +
             kCreator + ") from (" + kLib + ") error: '" + cause + "'";
    },
    // The rest of the line is an address.
    {"findInvoker called for interface & protocol: %sIfc%n,%stcp sem="},
    Offers::offerInvoker};

const Loader kRegistryInvoker{
    "RegistryInvoker",
    kRegistryLib,
    kRegistryCreator,
    loadRegistryInvoker,
    "",
    [](const std::string& cause) {
      return std::string("Unable to open 'service registry invoker' library '") + kRegistryLib +
             "': '" + cause + "'";
    },
    [](const std::string& cause) {
      return std::string("Error resolving 'service registry invoker' creator function '") +
             kRegistryCreator + "': '" + cause + "'";
    },
    {},
    Offers::offerInvoker};

class LoadingALibrary : public ConfiguratorTest, public testing::WithParamInterface<Loader> {
 protected:
  LoadingALibrary() {
    sut->services["ServiceRegistryIfc"] = nullptr;
    Platform::reply("find_invoker:%sIfc%n,%stcp",
                    std::string("found_invoker:") + kLib + "," + kCreator);
  }

  const void* load() { return GetParam().load(*sut); }
  void offerAll() { GetParam().offer(GetParam().lib, GetParam().creator); }

  void failToOpen(const std::string& cause) { Platform::library(GetParam().lib).error = cause; }

  /** The address that comes with the failure is not used. */
  void failToResolve(const std::string& cause) {
    offerAll();
    Platform::library(GetParam().lib).symbols[GetParam().creator].error = cause;
  }

  /** The failures that were told, as they are read, with where they were told. */
  static Lines told() {
    Lines told;
    for (const fakes::Event& event : Trace::events()) {
      if (event.text.rfind("log(\"Service Config\", \"src/ServiceConfigurator\", 2, ", 0) == 0) {
        told.push_back("log: " + event.message);
      } else if (event.text.rfind("printed ", 0) == 0) {
        told.push_back("printed: " + event.message);
      }
    }
    return told;
  }

  static void expectTold(const std::string& text) {
    EXPECT_THAT(told(), testing::ElementsAre("log: " + text,
                                             "printed: " + GetParam().prefix + text + "\n"));
  }

  /** How many lines there are that begin with a text. */
  static std::ptrdiff_t count(const std::string& beginning) {
    const Lines lines = Trace::lines();
    return std::count_if(lines.begin(), lines.end(),
                         [&](const std::string& line) { return line.rfind(beginning, 0) == 0; });
  }
};

TEST_P(LoadingALibrary, ThatFailsWithoutAText_FailsAllTheSame) {
  failToOpen("");
  EXPECT_EQ(load(), nullptr);
  expectTold(GetParam().opening(""));
  EXPECT_EQ(count("Dll#1.symbol("), 0);
  EXPECT_EQ(count("~Dll#1"), 1);
}

TEST_P(LoadingALibrary, WhoseCreatorFailsWithoutAText_FailsAllTheSame) {
  failToResolve("");
  EXPECT_EQ(load(), nullptr);
  expectTold(GetParam().resolving(""));
  EXPECT_EQ(count(std::string(GetParam().creator) + "()"), 0);
  EXPECT_EQ(count("~Dll#1"), 1);
}

TEST_P(LoadingALibrary, ThatThrows_LetsTheExceptionPassAndTellsNothing) {
  offerAll();
  Platform::once("Dll#1 = ", [] { throw std::runtime_error("no library"); });
  EXPECT_EQ(messageOf<std::runtime_error>([this] { load(); }), "no library");
  EXPECT_THAT(told(), testing::IsEmpty());
  EXPECT_THAT(Trace::lines().back(), testing::AnyOf(testing::StartsWith("Dll#1 = "),
                                                    testing::StartsWith("invokerSem.give(")));
  // Making a proxy keeps its semaphore then.
  fakes::SemaphoreTable::clear();
}

TEST_P(LoadingALibrary, ThatFailsWithPercentSigns_TellsThemAsTheyAre) {
  failToOpen("100% of %s and %n");
  EXPECT_EQ(load(), nullptr);
  expectTold(GetParam().opening("100% of %s and %n"));
}

TEST_P(LoadingALibrary, WhoseCreatorFailsWithPercentSigns_TellsThemAsTheyAre) {
  failToResolve("100% of %s and %n");
  EXPECT_EQ(load(), nullptr);
  expectTold(GetParam().resolving("100% of %s and %n"));
}

TEST_P(LoadingALibrary, WithPercentSignsInItsNames_LogsThemAsTheyAre) {
  offerAll();
  EXPECT_NE(load(), nullptr);
  Lines messages;
  for (const fakes::Event& event : Trace::events()) {
    const auto address = event.message.find("sem=");
    const std::string text =
        event.message.substr(0, address == std::string::npos ? address : address + 4);
    const bool ofTheConfigurator =
        event.text.rfind("log(\"Service Config\", \"src/ServiceConfigurator\", 5", 0) == 0;
    if (ofTheConfigurator && text.find('%') != std::string::npos) messages.push_back(text);
  }
  EXPECT_EQ(asText(messages), asText(GetParam().progress));
}

INSTANTIATE_TEST_SUITE_P(Each, LoadingALibrary,
                         testing::Values(kImmediate, kLegacy, kLazy, kProxy, kInvoker,
                                         kRegistryInvoker),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace zerva::conformance
