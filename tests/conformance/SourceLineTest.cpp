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

class ALogLineOfADirective : public DirectiveFileTest {};

TEST_F(ALogLineOfADirective, NamesTheLineOfItsCall) {
  process("service_instance:\nservice_info:\nservice_instance:\n");
  expectALineEach(2);
}

}  // namespace
}  // namespace zerva::conformance
