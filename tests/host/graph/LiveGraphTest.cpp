#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/graph/LiveGraph.h"
#include "host/live/HostStatusIfc.h"
#include "host/trace/GraphChart.h"
#include "tests/host/trace/SvgPicture.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

ServiceStatus service(const std::string& channel, const std::string& interfaces) {
  ServiceStatus status;
  status.channel = channel;
  status.interfaces = interfaces;
  status.creator = "createIt";
  return status;
}

CallRun calls(const std::string& from, const std::string& to, std::uint64_t count,
              std::uint64_t failures = 0) {
  return {from, to, "Ifc", "method", count, failures, {{1023, count}}};
}

/** A process that was looked at, with the services "/PROCESS/a" and "/PROCESS/b". */
Answer answered(int process, const std::vector<CallRun>& made) {
  Answer answer;
  answer.process = process;
  answer.tells = true;
  answer.status = ProcessStatus();
  answer.status->file = "file" + std::to_string(process);
  const std::string begin = "/" + std::to_string(process);
  answer.channels = {HostStatusIfc::channelOf(process)};
  for (const char* name : {"/a", "/b"}) {
    answer.status->services.push_back(service(begin + name, "Ifc"));
    answer.channels.push_back(begin + name);
  }
  answer.calls = CallsSoFar{made, 0, 0};
  return answer;
}

Answer notTelling(int process, const std::vector<std::string>& channels) {
  Answer answer;
  answer.process = process;
  answer.channels = channels;
  return answer;
}

const GraphNode* node(const CallGraph& graph, const std::string& name) {
  for (const GraphNode& node : graph.nodes) {
    if (node.name == name) return &node;
  }
  return nullptr;
}

std::vector<std::string> arrowsOf(const CallGraph& graph) {
  std::vector<std::string> arrows;
  for (const GraphArrow& arrow : graph.arrows) {
    arrows.push_back(graph.nodes[arrow.from].name + ">" + graph.nodes[arrow.to].name + " " +
                     std::to_string(arrow.count()) + "/" + std::to_string(arrow.failures()));
  }
  return arrows;
}

TEST(AGraphOfABus, HasTheCallsOfAllItsProcesses) {
  const CallGraph sut = liveCallGraph(
      {answered(1, {calls("/1/a", "/2/b", 5, 2)}), answered(2, {calls("/2/b", "/2/a", 3)})}, false);
  EXPECT_THAT(arrowsOf(sut), ElementsAre("/1/a>/2/b 5/2", "/2/b>/2/a 3/0"));
  EXPECT_THAT(sut.processes, ElementsAre("file1, process 1", "file2, process 2"));
  EXPECT_EQ(node(sut, "/2/b")->process, 1U);
  EXPECT_TRUE(sut.live);
}

TEST(AGraphOfABus, TellsWhatIsDeclaredAndNotCalled) {
  const CallGraph sut = liveCallGraph({answered(1, {calls("/1/a", "/1/b", 1)})}, false);
  EXPECT_FALSE(node(sut, "/1/a")->interfaces.at(0).called);
  EXPECT_TRUE(node(sut, "/1/b")->interfaces.at(0).called);
  EXPECT_TRUE(node(sut, "/1/b")->interfaces.at(0).declared);
}

TEST(AGraphOfABus, KnowsALegacyServiceByItsFirstInterfaceOrItsCreator) {
  Answer answer = answered(1, {calls("OneIfc", "/1/a", 1), calls("createIt", "/1/a", 2)});
  answer.status->services.push_back(service("", "OneIfc OtherIfc"));
  answer.status->services.push_back(service("", ""));
  const CallGraph sut = liveCallGraph({answer}, false);
  EXPECT_TRUE(node(sut, "OneIfc")->declared);
  EXPECT_TRUE(node(sut, "createIt")->declared);
}

TEST(AGraphOfABus, CallsAHostByItsProcessWhereItCallsForNobody) {
  const CallGraph sut = liveCallGraph({answered(7, {calls("", "/7/a", 1)})}, false);
  EXPECT_THAT(arrowsOf(sut), ElementsAre("host 7>/7/a 1/0"));
}

TEST(AGraphOfABus, HasABoxForEachChannelOfAProcessThatDoesNotTell) {
  const CallGraph sut = liveCallGraph(
      {notTelling(1, {"/plain", "/other"}), answered(2, {calls("/2/a", "/plain", 4)})}, false);
  ASSERT_NE(node(sut, "/other"), nullptr);
  EXPECT_FALSE(node(sut, "/other")->lookedAt);
  EXPECT_EQ(node(sut, "/other")->process, 0U);
  EXPECT_THAT(arrowsOf(sut), ElementsAre("/2/a>/plain 4/0"));
  EXPECT_EQ(sut.processes.at(0), "process 1, not looked at: it was not started with --status");
}

TEST(AGraphOfABus, SaysOfAProcessThatDoesNotAnswerWhyNot) {
  Answer silent = answered(1, {});
  silent.status.reset();
  silent.calls.reset();
  silent.why = "no answer came";
  const CallGraph sut = liveCallGraph({silent}, false);
  EXPECT_EQ(sut.processes.at(0), "process 1, not looked at: it does not answer: no answer came");
  ASSERT_NE(node(sut, "/1/a"), nullptr);
  EXPECT_FALSE(node(sut, "/1/a")->lookedAt);
  EXPECT_EQ(node(sut, HostStatusIfc::channelOf(1)), nullptr);
}

TEST(AGraphOfABus, HasWhatAProcessHasWhoseCallsAreNotKnown) {
  Answer answer = answered(1, {});
  answer.calls.reset();
  answer.why = "too old";
  const CallGraph sut = liveCallGraph({answer, answered(2, {calls("/2/a", "/1/a", 1)})}, false);
  EXPECT_EQ(sut.processes.at(0), "file1, process 1, its calls are not known: too old");
  EXPECT_TRUE(node(sut, "/1/a")->declared);
  EXPECT_TRUE(node(sut, "/1/a")->interfaces.at(0).called);
  EXPECT_FALSE(node(sut, "/1/a")->lookedAt);
  EXPECT_THAT(SvgPicture::read(callGraphSvg(sut)).textsOf("bad"),
              Contains("its calls are not known"));
}

TEST(AGraphOfABus, SaysOfAProcessThatServesNothingNoMoreThanThat) {
  const CallGraph sut = liveCallGraph({notTelling(1, {})}, false);
  EXPECT_EQ(sut.processes.at(0),
            "process 1, not looked at: it serves nothing and does not tell how it is");
}

TEST(AGraphOfABus, KnowsWhoServesAChannelThatNoLineDeclares) {
  Answer server = answered(2, {});
  server.channels.emplace_back("/made/by/itself");
  const CallGraph sut =
      liveCallGraph({answered(1, {calls("/1/a", "/made/by/itself", 1)}), server}, false);
  EXPECT_EQ(node(sut, "/made/by/itself")->process, 1U);
  EXPECT_TRUE(node(sut, "/made/by/itself")->lookedAt);
  EXPECT_FALSE(node(sut, "/made/by/itself")->declared);
}

/** A process that declares a service. @param serves whether it serves its channel, too. */
Answer with(Answer answer, const ServiceStatus& service, bool serves = true) {
  if (serves) answer.channels.push_back(service.channel);
  answer.status->services.push_back(service);
  return answer;
}

/** @returns each arrow with the processes between which it goes. */
std::vector<std::string> waysOf(const CallGraph& graph) {
  const auto nameOf = [&](std::size_t place) {
    const GraphNode& node = graph.nodes.at(place);
    return node.name + (node.process ? "@" + std::to_string(*node.process) : "");
  };
  std::vector<std::string> ways;
  for (const GraphArrow& arrow : graph.arrows) {
    ways.push_back(nameOf(arrow.from) + ">" + nameOf(arrow.to));
  }
  return ways;
}

TEST(AGraphOfABus, LeadsToTheServiceInTheSameProcessWhereOthersHaveOneOfItsName) {
  const ServiceStatus log = service("/log", "Ifc");
  const CallGraph sut = liveCallGraph(
      {with(answered(1, {calls("/1/a", "/log", 1)}), log),
       with(answered(2, {calls("/2/a", "/log", 1)}), log), answered(3, {calls("/3/a", "/log", 1)})},
      false);
  EXPECT_THAT(waysOf(sut), ElementsAre("/1/a@0>/log@0", "/2/a@1>/log@1", "/3/a@2>/log@0"));
  for (const GraphNode& node : sut.nodes) {
    EXPECT_EQ(node.interfaces.at(0).called, node.name == "/log") << node.name;
  }
}

TEST(AGraphOfABus, LeadsToTheProcessThatServesRatherThanToOneThatShould) {
  const ServiceStatus log = service("/log", "Ifc");
  const Answer shouldServe = with(answered(1, {calls("/1/a", "/log", 1)}), log, false);
  const CallGraph sut = liveCallGraph(
      {shouldServe, with(answered(2, {}), log), answered(3, {calls("/3/a", "/log", 1)})}, false);
  EXPECT_THAT(waysOf(sut), ElementsAre("/1/a@0>/log@1", "/3/a@2>/log@1"));
}

TEST(AGraphOfABus, LeadsToAProcessThatDoesNotTellButServes) {
  const Answer shouldServe = with(answered(1, {}), service("/log", "Ifc"), false);
  const CallGraph sut = liveCallGraph(
      {shouldServe, notTelling(2, {"/log"}), answered(3, {calls("/3/a", "/log", 1)})}, false);
  EXPECT_THAT(waysOf(sut), ElementsAre("/3/a@2>/log@1"));
}

TEST(AGraphOfABus, LeadsToWhoShouldServeWhenNobodyDoes) {
  const CallGraph sut = liveCallGraph({answered(1, {calls("/1/a", "/log", 1)}),
                                       with(answered(2, {}), service("/log", "Ifc"), false)},
                                      false);
  EXPECT_THAT(waysOf(sut), ElementsAre("/1/a@0>/log@1"));
}

TEST(AGraphOfABus, HasOneBoxForAServiceThatNoLineDeclares) {
  Answer answer = answered(1, {calls("/1/a", "/extra", 1), calls("/extra", "/1/b", 1)});
  answer.channels.emplace_back("/extra");
  EXPECT_THAT(arrowsOf(liveCallGraph({answer}, false)),
              ElementsAre("/1/a>/extra 1/0", "/extra>/1/b 1/0"));
  EXPECT_THAT(liveCallGraph({answer}, false).nodes, testing::SizeIs(3));
}

TEST(AGraphOfABus, HasTheInterfacesOfAllLinesOfAChannel) {
  Answer answer = with(answered(1, {calls("/2/a", "/1/a", 1)}), service("/1/a", "Ifc OtherIfc"));
  answer.status->services[0].interfaces = "FirstIfc";
  const CallGraph sut = liveCallGraph({answer}, false);
  std::vector<std::string> interfaces;
  for (const DeclaredInterface& declared : node(sut, "/1/a")->interfaces) {
    interfaces.push_back(declared.name);
    EXPECT_TRUE(declared.declared);
    EXPECT_EQ(declared.called, declared.name == "Ifc");
  }
  EXPECT_THAT(interfaces, ElementsAre("FirstIfc", "Ifc", "OtherIfc"));
}

TEST(AGraphOfABus, HasNoBoxForTheServiceThatTells) {
  EXPECT_EQ(node(liveCallGraph({answered(1, {})}, false), HostStatusIfc::channelOf(1)), nullptr);
}

TEST(AGraphOfABus, IsWithoutTheRegistryUnlessThatIsWanted) {
  const std::vector<Answer> answers{answered(1, {calls("/1/a", "/zerva/serviceregistry", 1)}),
                                    notTelling(2, {"/zerva/serviceregistry"})};
  EXPECT_EQ(node(liveCallGraph(answers, false), "/zerva/serviceregistry"), nullptr);
  EXPECT_THAT(arrowsOf(liveCallGraph(answers, true)),
              ElementsAre("/1/a>/zerva/serviceregistry 1/0"));
}

TEST(AGraphOfABus, AddsUpTheCallsThatCouldNotBeToldApart) {
  std::vector<Answer> answers{answered(1, {}), answered(2, {})};
  answers[0].calls->others = 4;
  answers[0].calls->failedOthers = 1;
  answers[1].calls->others = 3;
  const CallGraph sut = liveCallGraph(answers, false);
  EXPECT_EQ(sut.others, 7U);
  EXPECT_EQ(sut.failedOthers, 1U);
  const auto json = nlohmann::json::parse(callGraphJson(sut));
  EXPECT_EQ(json.at("others"), 7);
  EXPECT_EQ(json.at("failed_others"), 1);
}

TEST(APictureOfABus, TellsWhatItIsWithout) {
  Answer answer = answered(1, {calls("/1/a", "/gone", 1)});
  answer.calls->others = 4;
  answer.calls->failedOthers = 1;
  const CallGraph graph = liveCallGraph({answer, notTelling(2, {"/plain"})}, false);
  const SvgPicture sut = SvgPicture::read(callGraphSvg(graph));
  EXPECT_THAT(sut.textsOf("bad"),
              IsSupersetOf({"4 calls more, 1 of them failed, of others, too many to be told apart",
                            "not looked at", "not on the bus"}));
  EXPECT_THAT(sut.textsOf("process"),
              Contains("process 2, not looked at: it was not started with --status"));
  EXPECT_THAT(sut.misfits(), IsEmpty());
}

TEST(APictureOfABus, TellsOfCallsToItselfHowManyFailed) {
  const std::string sut =
      callGraphSvg(liveCallGraph({answered(1, {calls("/1/a", "/1/a", 5, 2)})}, false));
  EXPECT_THAT(SvgPicture::read(sut).textsOf("bad"),
              Contains("itself: 5 calls, 2 failed, median 960 ns"));
  EXPECT_THAT(sut, HasSubstr("Ifc.method: 5, 2 failed, median 960 ns"));
}

TEST(APictureOfABus, HasTheInterfacesThatWereCalledOfWhatNoLineDeclares) {
  const CallGraph graph =
      liveCallGraph({answered(1, {calls("/1/a", "/gone", 1), calls("/1/a", "/plain", 1)}),
                     notTelling(2, {"/plain"})},
                    false);
  for (const char* name : {"/gone", "/plain"}) {
    ASSERT_EQ(node(graph, name)->interfaces.size(), 1U) << name;
    EXPECT_TRUE(node(graph, name)->interfaces[0].called);
    EXPECT_FALSE(node(graph, name)->interfaces[0].declared);
  }
  const SvgPicture sut = SvgPicture::read(callGraphSvg(graph));
  EXPECT_THAT(sut.textsOf("count"), Contains("Ifc"));
  EXPECT_THAT(sut.textsOf("bad"), Not(Contains(HasSubstr("not declared"))));
}

TEST(APictureOfABus, TellsOfEachBoxWhoseItIs) {
  const std::string sut =
      callGraphSvg(liveCallGraph({answered(1, {}), notTelling(2, {"/plain"})}, false));
  EXPECT_THAT(sut, HasSubstr("<title>/1/a\nfile1, process 1</title>"));
  EXPECT_THAT(sut, HasSubstr("<title>/plain\nprocess 2, not looked at: "));
}

TEST(APictureOfABus, FitsWhateverItsPeersSay) {
  for (const std::string part : {"long/", "\x1b", "\xff\xfe", "\x80", "\xc3\xa4", "\n", "<&\"'>"}) {
    std::string name = "/";
    while (name.size() < 60000) name += part;
    Answer answer = answered(1, {calls("/1/a", name, 1), calls(name, name, 2, 1)});
    answer.status->file = name;
    answer.status->services[0].interfaces = name;
    answer.calls->calls[0].interface = name;
    answer.calls->calls[0].method = name;
    Answer silent = notTelling(2, {name});
    silent.tells = true;
    silent.why = name;
    const CallGraph graph = liveCallGraph({answer, silent}, false);
    const SvgPicture sut = SvgPicture::read(callGraphSvg(graph));
    EXPECT_THAT(sut.misfits(), IsEmpty());
    EXPECT_LT(sut.width, 2000) << part;
    EXPECT_EQ(nlohmann::json::parse(callGraphJson(graph)).at("nodes").size(), graph.nodes.size());
  }
}

TEST(APictureOfABus, IsDrawnOfManyServicesAndCalls) {
  std::vector<CallRun> made;
  Answer answer = answered(1, {});
  for (int number = 0; number < 20000; ++number) {
    const std::string name = "/service/" + std::to_string(number);
    answer.status->services.push_back(service(name, "Ifc"));
    answer.calls->calls.push_back(calls(name, "/hub", 1));
    answer.calls->calls.push_back(calls(name, name, 1));
  }
  EXPECT_THAT(callGraphSvg(liveCallGraph({answer}, false)), HasSubstr("/service/19999"));
}

TEST(AGraphOfABusAsJson, TellsBetweenWhichNodesCallsGo) {
  const ServiceStatus log = service("/log", "Ifc");
  const auto json = nlohmann::json::parse(callGraphJson(liveCallGraph(
      {with(answered(1, {}), log), with(answered(2, {calls("/2/a", "/log", 1)}), log)}, false)));
  const auto& call = json.at("calls").at(0);
  EXPECT_EQ(json.at("nodes").at(call.at("from_node").get<std::size_t>()).at("name"), "/2/a");
  const auto& to = json.at("nodes").at(call.at("to_node").get<std::size_t>());
  EXPECT_EQ(to.at("name"), "/log");
  EXPECT_EQ(to.at("process"), "file2, process 2");
}

TEST(AGraphOfABusAsJson, TellsWhoWasNotLookedAt) {
  const auto json = nlohmann::json::parse(
      callGraphJson(liveCallGraph({answered(1, {}), notTelling(2, {"/pl\xff"})}, false)));
  EXPECT_EQ(json.at("live"), true);
  EXPECT_EQ(json.at("nodes").at(0).at("looked_at"), true);
  EXPECT_EQ(json.at("nodes").at(2).at("looked_at"), false);
  EXPECT_EQ(json.at("nodes").at(2).at("name"), "/pl\xef\xbf\xbd");
}

}  // namespace
}  // namespace zerva
