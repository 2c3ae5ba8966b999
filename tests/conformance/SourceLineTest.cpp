#include <map>
#include <set>

#include "tests/conformance/DirectiveFileTest.h"
#include "tests/conformance/ProxyLookupTest.h"

namespace zerva::conformance {
namespace {

/** What was logged, by its format, with the lines of the source that it came from. */
std::map<std::string, std::set<int>> sourceLines() {
  std::map<std::string, std::set<int>> lines;
  for (const fakes::Event& event : Trace::events()) {
    if (event.text.rfind("log(", 0) != 0) continue;
    const std::string arguments = event.text.substr(event.text.find(", \"src/"));
    lines[arguments.substr(0, arguments.find("\", ", arguments.find(", \"", 4)))].insert(
        event.sourceLine);
  }
  return lines;
}

/** Each statement has one line, which is its own. */
void expectALineEach(std::size_t statements) {
  const auto lines = sourceLines();
  EXPECT_EQ(lines.size(), statements);
  std::set<int> all;
  for (const auto& [format, ofStatement] : lines) {
    EXPECT_EQ(ofStatement.size(), 1u) << format;
    all.insert(ofStatement.begin(), ofStatement.end());
  }
  EXPECT_EQ(all.size(), statements);
  EXPECT_GT(*all.begin(), 0);
}

/** Each of the texts that begin so has one line, which is its own. */
void expectALineEach(const std::vector<std::string>& beginnings) {
  std::set<int> all;
  for (const std::string& beginning : beginnings) {
    std::set<int> ofText;
    for (const fakes::Event& event : Trace::events()) {
      if (event.message.rfind(beginning, 0) == 0 && event.text.rfind("log(", 0) == 0) {
        ofText.insert(event.sourceLine);
      }
    }
    EXPECT_EQ(ofText.size(), 1u) << beginning;
    all.insert(ofText.begin(), ofText.end());
  }
  EXPECT_EQ(all.size(), beginnings.size());
  EXPECT_GT(*all.begin(), 0);
}

class ALogLine : public ProxyLookup {};

TEST_F(ALogLine, OfAnInvokersLookup_NamesTheLineOfItsCall) {
  Platform::reply("find_invoker:FooIfc,tcp", "found_invoker:libA.so,createA");
  std::string ifc = "FooIfc";
  std::string protocol = "tcp";
  plain->findInvoker(ifc, protocol);
  offerInvoker("libA.so", "another");
  plain->findInvoker(ifc, protocol);
  expectALineEach(4);
}

TEST_F(ALogLine, OfMakingAProxy_NamesTheLineOfItsCall) {
  std::string lib = "libA.so";
  std::string creator = "createA";
  std::string svcChannel = "/svc/a";
  std::string ifc = "FooIfc";
  std::string qualifier;
  offerProxy("libA.so", "createA");
  for (int i = 0; i < 2; ++i) {
    plain->initProxyAndAddToRepository(lib, creator, svcChannel, ifc, qualifier);
  }
  expectALineEach(5);
}

TEST_F(ALogLine, OfAProxysLookup_NamesTheLineOfItsCall) {
  recordProxy("FooIfc", "/svc/a", "");
  std::string ifc = "FooIfc";
  std::string svcChannel = "/svc/a";
  std::string none;
  plain->findService(ifc);
  plain->findProxy(ifc, svcChannel, none);
  plain->findProxy(ifc, none, none);
  expectALineEach(5);
}

TEST_F(ALogLine, OfARepository_NamesTheLineOfItsCall) {
  std::string ifc = "FooIfc";
  inner.deleteOneServiceProxy(recordProxy(ifc, "/svc/a", ""), ifc);
  inner.deleteOneServiceProxy(nullptr, ifc);
  expectALineEach(3);
}

/** A service whose library misses, then its creator, then what that makes; and then all is there.
 */
class ALogLineOfAService : public ConfiguratorTest {
 protected:
  ALogLineOfAService() { sut->services["ServiceRegistryIfc"] = nullptr; }

  template <class Create>
  static void createInAllWays(const Create& create) {
    create();
    Platform::library("lib.so");
    create();
    offerNoService("lib.so", "create");
    create();
    offerService("lib.so", "create");
    create();
  }

  void createNow(const std::string& ifc) {
    createInAllWays([&] { sut->createServiceExecutor("lib.so", "create", "c", ifc, true); });
  }
  void createLegacy() {
    createInAllWays([this] { sut->createService("lib.so", "create", "OldIfc"); });
  }
  void createLazily() {
    createInAllWays([this] {
      sut->initialiseService(nullptr, "lib.so", "create", nullptr, "ServiceRegistryIfc");
    });
  }
};

TEST_F(ALogLineOfAService, ThatIsMadeNow_NamesTheLineOfItsCall) {
  createNow("FooIfc");
  createNow("ServiceRegistryIfc");
  expectALineEach(
      {"Opening Lib: ", "Error opening library", "Resolving symbol: ", "Error resolving symbol",
       "Service Configurator: Calling creator fn", "Service Configurator: Creating CommsChannel",
       "Service Configurator: Creating Service Executor",
       "Service Configurator: Service Executor created",
       "ServiceConfigurator::createServiceExecutor() : Error while initializing",
       "ServiceConfigurator::createServiceExecutor() cannot get svcRegistry",
       "Service Configurator: Calling init",
       "ServiceConfigurator::createServiceExecutor() svcRegistry not found",
       "Service Configurator: Service created successfully",
       "Service Configurator: Starting Service Executor",
       "Service Configurator: Service Executor Running"});
}

TEST_F(ALogLineOfAService, ThatIsDeclared_NamesTheLineOfItsCall) {
  sut->createServiceExecutorDelayedInitialisation("lib.so", "create", "c", "FooIfc", true);
  expectALineEach({"Service Configurator: Creating CommsChannel",
                   "Service Configurator: Creating Service Executor with lazy initialisation",
                   "Service Configurator: Service Executor created",
                   "Service Configurator: Starting Service Executor",
                   "Service Configurator: Service Executor Running",
                   "ServiceConfigurator::createServiceExecutorDelayedInitialisation() cannot get"});
}

TEST_F(ALogLineOfAService, ThatIsMadeLazily_NamesTheLineOfItsCall) {
  createLazily();
  expectALineEach({"Creating Service for second stage", "Opening Lib: ", "Error opening library",
                   "Resolving symbol: ", "Error resolving symbol",
                   "Service Configurator: Calling creator fn",
                   "ServiceConfigurator::initialiseService() : Error while initializing",
                   "Service Configurator: Calling init",
                   "ServiceConfigurator::initialiseService() svcRegistry not found",
                   "Service Configurator: Service created successfully"});
}

TEST_F(ALogLineOfAService, ThatIsALegacyOne_NamesTheLineOfItsCall) {
  createLegacy();
  expectALineEach({"Opening library", "Error opening library", "Resolving symbol",
                   "Error resolving symbol", "Service Configurator: Calling creator fn",
                   "Service Configurator: Calling init",
                   "ServiceConfigurator::createService() : Error while initializing",
                   "Service Configurator: Creating thread"});
}

TEST_F(ALogLineOfAService, AboutTheRegistrysInvoker_NamesTheLineOfItsCall) {
  sut->createSvcRegInvoker();
  Platform::library("libServiceRegistry.so");
  sut->createSvcRegInvoker();
  offerInvoker("libServiceRegistry.so", "createServiceRegistryInvoker");
  sut->createSvcRegInvoker();
  expectALineEach({"Unable to open 'service registry invoker'",
                   "Error resolving 'service registry invoker'",
                   "Service Registry Invoker created:"});
}

TEST_F(ALogLineOfAService, AboutARecord_NamesTheLineOfItsCall) {
  sut->registerInvokerInfo("lib.so", "create", "FooIfc", "tcp");
  sut->registerProxyInfo("lib.so", "create", "FooIfc", "tcp");
  expectALineEach({"ServiceConfigurator::registerInvokerInfo() cannot get",
                   "ServiceConfigurator::registerProxyInfo() cannot get"});
}

class ALogLineOfADirective : public DirectiveFileTest {};

TEST_F(ALogLineOfADirective, OfEachKind_NamesTheLineOfItsCall) {
  sut->processDirectives(directory.file("missing").string());
  process(
      "service_instance:lib.so create c FooIfc\nservice_instance:\n"
      "service_info:lib.so create c FooIfc\nservice_info:\n"
      "service_legacy:lib.so create OldIfc\nservice_legacy:\n"
      "invoker_info:lib.so create FooIfc tcp\nproxy_info:lib.so create FooIfc tcp\nbad:\n");
  const std::string operation = "ServiceConfigurator::processDirectives";
  expectALineEach({operation + " failed to open",
                   "Creating Service. Lib: ", "Creating Service Instance. Error",
                   "Creating Service Info. Lib: ", "Creating Service Info. Error",
                   "Creating Legacy Service. Lib: ", "Creating Legacy Service. Error",
                   "Reg Invoker. ", "Reg Proxy. ", operation + " - invalid directive"});
}

TEST_F(ALogLineOfADirective, ThatStartsAProcess_NamesTheLineOfItsCall) {
  leaves("Process#1");
  leaves("Process#2");
  Platform::answer("Process#2.ID(", 0);
  process("start_process:p\nstart_process:q\nstart_process:\n");
  expectALineEach({"start_process successfully started", "start_process failed to start",
                   "ServiceConfiguratr::Empty 'start_process'"});
}

TEST_F(ALogLineOfADirective, NamesTheLineOfItsCall) {
  process("service_instance:\nservice_info:\nservice_instance:\n");
  expectALineEach(2);
}

}  // namespace
}  // namespace zerva::conformance
