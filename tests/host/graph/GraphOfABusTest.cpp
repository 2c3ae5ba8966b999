// Who called whom in hosts that run, each a process.

#include <signal.h>

#include <filesystem>
#include <fstream>

#include "tests/host/live/HostsOnABus.h"
#include "tests/host/trace/SvgPicture.h"
#include "tests/support/FileText.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;

using Json = nlohmann::json;

/** The lines of a relay, which does what it is told by a call. */
std::string relay(const std::string& name) {
  std::string lines;
  for (const char* protocol : {"zerva_simple_rmi", "zerva_svc_xml"}) {
    lines += "proxy_info: libRelayAccess.so createRelayProxy " + name + " " + protocol + "\n";
    lines += "invoker_info: libRelayAccess.so createRelayInvoker " + name + " " + protocol + "\n";
  }
  return lines + "service_instance: ST libRelay.so createRelay /test/" + name + " " + name + "\n";
}

class TheGraphOfABus : public HostsOnABus {
 protected:
  /** Two processes that are looked at: First with the registry, Second in the other one. */
  void startBoth(const std::vector<std::string>& more = {"--status"}) {
    startAll(kRegistryLine + relay("First"), more);
    startAll(relay("Second"), more);
  }

  /** Lets a relay go a way. @returns the exit code. */
  int pass(const std::string& relay, const std::string& way) const {
    return zerva("call", {relay, "pass", way}).code;
  }

  Json graph(std::vector<std::string> words = {}) const {
    words.insert(words.begin(), {"--live", "--json"});
    const Seen seen = zerva("graph", words);
    EXPECT_EQ(seen.code, 0) << seen.errors;
    return Json::parse(seen.output);
  }

  /** @returns the arrow; null when there is none. */
  static Json arrow(const Json& graph, const std::string& from, const std::string& to) {
    for (const Json& call : graph.at("calls")) {
      if (call.at("from") == from && call.at("to") == to) return call;
    }
    return nullptr;
  }

  std::string picture() const { return directory.file("graph.svg"); }
};

TEST_F(TheGraphOfABus, CountsTheCallsAcrossItsProcesses) {
  startBoth();
  for (int time = 0; time < 3; ++time) ASSERT_EQ(pass("First", R"(["Second"])"), 0);
  ASSERT_EQ(pass("Second", R"(["First"])"), 0);
  ASSERT_EQ(pass("First", R"(["Second","throw"])"), 3);
  const Json sut = graph();
  const Json there = arrow(sut, "/test/First", "/test/Second");
  ASSERT_FALSE(there.is_null()) << sut;
  EXPECT_EQ(there.at("count"), 4);
  EXPECT_EQ(there.at("failures"), 1);
  EXPECT_GT(there.at("median"), 0);
  EXPECT_EQ(there.at("methods").at(0).at("interface"), "Second");
  EXPECT_EQ(there.at("methods").at(0).at("method"), "pass");
  const Json back = arrow(sut, "/test/Second", "/test/First");
  EXPECT_EQ(back.at("count"), 1);
  EXPECT_EQ(back.at("failures"), 0);
  EXPECT_THAT(sut.at("calls"), SizeIs(2)) << "who looks is not among them: " << sut;
}

TEST_F(TheGraphOfABus, IsDrawnWithWhatStandsOnTheArrows) {
  startBoth();
  for (int time = 0; time < 3; ++time) ASSERT_EQ(pass("First", R"(["Second"])"), 0);
  ASSERT_EQ(pass("First", R"(["Second","throw"])"), 3);
  const Seen seen = zerva("graph", {"--live", "-o", picture()});
  EXPECT_EQ(seen.code, 0);
  EXPECT_EQ(seen.output + seen.errors, "");
  const SvgPicture sut = SvgPicture::read(readFile(picture()));
  EXPECT_THAT(sut.textsOf("head"), testing::UnorderedElementsAre("/test/First", "/test/Second"));
  EXPECT_THAT(sut.textsOf("count"), IsSupersetOf({"4 calls", "Second"}));
  EXPECT_THAT(sut.textsOf("bad"), Contains("1 failed"));
  EXPECT_THAT(sut.textsOf("small"), Contains(HasSubstr("median ")));
  EXPECT_THAT(sut.textsOf("small"), Contains("First (not called)"));
  EXPECT_THAT(sut.misfits(), IsEmpty());
}

TEST_F(TheGraphOfABus, KnowsWhichServiceAnnouncedItself) {
  startBoth();
  const Json sut = arrow(graph({"--registry"}), "/test/Second", "/zerva/serviceregistry");
  ASSERT_FALSE(sut.is_null());
  EXPECT_THAT(sut.at("methods").dump(), HasSubstr("registerInterface"));
}

TEST_F(TheGraphOfABus, IsTheSameAsThatOfTheTracesOfItsProcesses) {
  const std::string pattern = directory.file("trace-%p.jsonl");
  startBoth({"--status", "--trace", pattern});
  ASSERT_EQ(pass("First", R"(["Second","First"])"), 0);
  ASSERT_EQ(pass("First", R"(["Second"])"), 0);
  const Json sut = graph({"--registry"});
  std::vector<std::string> words{"graph", "--json", "--registry"};
  for (auto& host : hosts) {
    host->signal(SIGTERM);
    ASSERT_EQ(host->wait(), 0);
    words.push_back(directory.file("trace-" + std::to_string(host->id()) + ".jsonl"));
  }
  ChildProcess command(build + "/bin/zerva", words);
  ASSERT_EQ(command.wait(), 0) << command.errors();
  const Json traced = Json::parse(command.output());
  EXPECT_EQ(arrow(sut, "/test/First", "/test/Second"),
            arrow(traced, "/test/First", "/test/Second"));
  EXPECT_EQ(arrow(sut, "/test/Second", "/test/First"),
            arrow(traced, "/test/Second", "/test/First"));
  EXPECT_EQ(sut.at("nodes").size(), traced.at("nodes").size()) << sut << traced;
}

TEST_F(TheGraphOfABus, ShowsAProcessThatDoesNotTellAsNotLookedAt) {
  startBoth();
  const ChildProcess& third = start(relay("Third"), {});
  ASSERT_TRUE(waitUntil([&] { return pass("First", R"(["Third"])") == 0; }));
  const Seen seen = zerva("graph", {"--live", "-o", picture()});
  EXPECT_EQ(seen.code, 0);
  const std::string why = "process " + std::to_string(third.id());
  EXPECT_EQ(seen.errors, "zerva: " + why + ", not looked at: it was not started with --status\n");
  const SvgPicture sut = SvgPicture::read(readFile(picture()));
  EXPECT_THAT(sut.textsOf("head"), Contains("/test/Third"));
  EXPECT_THAT(sut.textsOf("bad"), Contains("not looked at"));
  EXPECT_THAT(sut.textsOf("process"),
              Contains(why + ", not looked at: it was not started with --status"));
}

TEST_F(TheGraphOfABus, IsDrawnWithoutAProcessThatDoesNotAnswer) {
  startBoth();
  ASSERT_EQ(pass("First", R"(["Second"])"), 0);
  ASSERT_TRUE(hosts[1]->stop());
  const Seen sut = zerva("graph", {"--live", "--json", "--timeout", "0.2"});
  hosts[1]->signal(SIGCONT);
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.errors, HasSubstr("process " + std::to_string(hosts[1]->id()) +
                                    ", not looked at: it does not answer: "));
  EXPECT_EQ(arrow(Json::parse(sut.output), "/test/First", "/test/Second").at("count"), 1);
}

TEST_F(TheGraphOfABus, DoesNotMakeALazyServiceNorWaitForABusyOne) {
  ChildProcess& host = startAll(
      kRegistryLine +
      "service_info: ST libPlain.so createPlain /test/lazy LazyIfc\n"
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  ASSERT_TRUE(
      waitUntil([&] { return service(host, "AskedIfc").at("executor").at("serving") == 1; }));
  graph();
  EXPECT_EQ(service(host, "LazyIfc").at("state"), "lazy");
  EXPECT_EQ(service(host, "AskedIfc").at("executor").at("requests"), 1);
}

TEST_F(TheGraphOfABus, LeavesAnIdleServiceAlone) {
  const ChildProcess& host = startAll(kRegistryLine + kPlainLine);
  const auto requests = [&](const char* interface) {
    return service(host, interface).at("executor").at("requests");
  };
  const Json plain = requests("PlainIfc");
  const Json registry = requests("ServiceRegistryIfc");
  for (int time = 0; time < 3; ++time) graph();
  EXPECT_EQ(requests("PlainIfc"), plain);
  EXPECT_EQ(requests("ServiceRegistryIfc"), registry);
}

TEST_F(TheGraphOfABus, OfWhichNobodyTells_IsNotDrawn) {
  const ChildProcess& host = start(kPlainLine, {});
  ASSERT_TRUE(
      waitUntil([&] { return !status(host).empty() && !status(host).at("channels").empty(); }));
  const Seen sut = zerva("graph", {"--live", "-o", picture()});
  EXPECT_EQ(sut.code, 4);
  EXPECT_THAT(sut.errors, HasSubstr("zerva: no process of the bus tells what it calls: start them "
                                    "with run --status\n"));
  EXPECT_FALSE(std::filesystem::exists(picture()));
}

TEST_F(TheGraphOfABus, ThatIsNotThere_FailsAndMakesNone) {
  std::filesystem::remove(bus);
  const Seen sut = zerva("graph", {"--live"});
  EXPECT_EQ(sut.code, 10);
  EXPECT_EQ(sut.errors, "zerva: there is no bus: " + bus + " is no directory\n");
  EXPECT_FALSE(std::filesystem::exists(bus));
}

TEST_F(TheGraphOfABus, ThatCannotBeWritten_SaysSo) {
  startAll(kPlainLine);
  const Seen sut = zerva("graph", {"--live", "-o", directory.file("none/graph.svg")});
  EXPECT_EQ(sut.code, 2);
  EXPECT_THAT(sut.errors, HasSubstr("cannot write " + directory.file("none/graph.svg").string()));
}

TEST_F(TheGraphOfABus, ThatCannotBeWrittenToTheStandardOutput_SaysSo) {
  startAll(kPlainLine);
  ChildProcess sut("/bin/sh",
                   {"-c", build + "/bin/zerva graph --live --bus " + bus + " >/dev/full"});
  EXPECT_EQ(sut.wait(), 2);
  EXPECT_EQ(sut.errors(), "zerva: cannot write the standard output: No space left on device\n");
}

}  // namespace
}  // namespace zerva
