#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/trace/CallGraph.h"
#include "host/trace/GraphChart.h"
#include "host/trace/RunModelBuilder.h"
#include "tests/host/trace/SvgPicture.h"
#include "tests/host/trace/TraceText.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

std::vector<RunModel> bothProcesses() {
  return {readRun(traceFile("weather.jsonl")), readRun(traceFile("harbour.jsonl"))};
}

std::vector<std::string> namesOf(const CallGraph& graph) {
  std::vector<std::string> names;
  for (const GraphNode& node : graph.nodes) names.push_back(node.name);
  return names;
}

const GraphArrow* arrow(const CallGraph& graph, const std::string& from, const std::string& to) {
  for (const GraphArrow& arrow : graph.arrows) {
    if (graph.nodes[arrow.from].name == from && graph.nodes[arrow.to].name == to) return &arrow;
  }
  return nullptr;
}

std::string calls(const std::string& channel, const std::string& method, int count) {
  return R"("channel":")" + channel + R"(","interface":"Ifc","method":")" + method +
         R"(","count":)" + std::to_string(count) + R"(,"failures":0,"times":[[1000,)" +
         std::to_string(count) + "]]";
}

TEST(ACallGraph, GoesAcrossProcesses) {
  const CallGraph sut = callGraphOf(bothProcesses(), false);
  const GraphArrow* const crossing = arrow(sut, "/display", "/wind");
  ASSERT_NE(crossing, nullptr);
  EXPECT_EQ(crossing->count(), 10U);
  EXPECT_EQ(sut.nodes[crossing->from].process, 1U);
  EXPECT_EQ(sut.nodes[crossing->to].process, 0U);
}

TEST(ACallGraph, CountsCallsAndFailures) {
  const CallGraph sut = callGraphOf(bothProcesses(), false);
  const GraphArrow* const failing = arrow(sut, "/log", "/wind");
  ASSERT_NE(failing, nullptr);
  EXPECT_EQ(failing->count(), 200U);
  EXPECT_EQ(failing->failures(), 2U);
}

TEST(ACallGraph, HasOneArrowForAllMethodsOfACallerAndItsCallee) {
  const RunModel run = TraceText()
                           .add(1, "calls", "/one", calls("/two", "a", 3))
                           .add(1, "calls", "/one", calls("/two", "b", 4))
                           .run();
  const CallGraph sut = callGraphOf({run}, false);
  ASSERT_THAT(sut.arrows, SizeIs(1));
  EXPECT_THAT(sut.arrows[0].methods, SizeIs(2));
  EXPECT_EQ(sut.arrows[0].count(), 7U);
}

TEST(ACallGraph, IsWithoutTheRegistryUnlessThatIsWanted) {
  EXPECT_THAT(namesOf(callGraphOf(bothProcesses(), false)),
              Not(Contains("/zerva/serviceregistry")));
  const CallGraph sut = callGraphOf(bothProcesses(), true);
  EXPECT_NE(arrow(sut, "/log", "/zerva/serviceregistry"), nullptr);
}

TEST(ACallGraph, KnowsWhichDeclaredInterfacesAreCalled) {
  const CallGraph sut = callGraphOf(bothProcesses(), false);
  for (const GraphNode& node : sut.nodes) {
    if (node.name != "/forecast") continue;
    ASSERT_THAT(node.interfaces, SizeIs(2));
    EXPECT_EQ(node.interfaces[0].name, "ForecastIfc");
    EXPECT_TRUE(node.interfaces[0].called);
    EXPECT_FALSE(node.interfaces[1].called);
  }
}

TEST(ACallGraph, HasWhatIsCalledAndDeclaredNowhere) {
  const CallGraph sut = callGraphOf(bothProcesses(), false);
  const GraphArrow* const found = arrow(sut, "host 10", "/water");
  ASSERT_NE(found, nullptr);
  EXPECT_FALSE(sut.nodes[found->to].process);
  EXPECT_FALSE(sut.nodes[found->to].declared);
}

TEST(ACallGraph, HasOneBoxForWhatCallsAndIsCalledAndDeclaredNowhere) {
  const RunModel run = TraceText()
                           .add(1, "calls", "/one", calls("/two", "a", 3))
                           .add(1, "calls", "/two", calls("/three", "b", 4))
                           .run();
  const CallGraph sut = callGraphOf({run}, false);
  EXPECT_THAT(namesOf(sut), ElementsAre("/one", "/two", "/three"));
  EXPECT_NE(arrow(sut, "/two", "/three"), nullptr);
}

TEST(ACallGraph, LeadsToWhatCameUpRatherThanToWhatFailed) {
  const std::string declared = R"("kind":"immediate","interfaces":"Ifc")";
  TraceText failed;
  failed.add(1, "service_declared", "/two", declared);
  failed.add(2, "failed", "/two", R"("what":"service","error":"no library")");
  failed.add(9, "calls", "/one", calls("/two", "a", 3));
  const RunModel up = TraceText().add(1, "service_declared", "/two", declared).run();
  const CallGraph sut = callGraphOf({failed.run(), up}, false);
  ASSERT_NE(arrow(sut, "/one", "/two"), nullptr);
  EXPECT_EQ(sut.nodes[arrow(sut, "/one", "/two")->to].process, 1U);
}

TEST(TheMedianOfDurations, IsInTheMiddleOfItsStep) {
  EXPECT_EQ(medianOf({{1023, 1}, {2047, 5}, {4095, 1}}), (1792 + 2047) / 2 + 1);
  EXPECT_EQ(medianOf({{3, 1}}), 3);
  EXPECT_EQ(medianOf({}), 0);
}

TEST(ACallGraphAsJson, HasNodesAndCalls) {
  const auto json = nlohmann::json::parse(callGraphJson(callGraphOf(bothProcesses(), false)));
  EXPECT_EQ(json.at("processes").at(0), "weather.directives, process 10");
  bool found = false;
  for (const auto& call : json.at("calls")) {
    if (call.at("from") != "/log" || call.at("to") != "/wind") continue;
    found = true;
    EXPECT_EQ(call.at("count"), 200);
    EXPECT_EQ(call.at("methods").at(0).at("method"), "mean");
  }
  EXPECT_TRUE(found);
}

SvgPicture drawn(const CallGraph& graph) { return SvgPicture::read(callGraphSvg(graph)); }

TEST(APictureOfCalls, HasABoxForEachServiceAndALabelForEachArrow) {
  const SvgPicture sut = drawn(callGraphOf(bothProcesses(), false));
  EXPECT_THAT(sut.textsOf("head"),
              testing::UnorderedElementsAre("/forecast", "/wind", "/log", "ClockIfc", "/broken",
                                            "/display", "host 10", "/water"));
  EXPECT_THAT(sut.textsOf("count"),
              testing::IsSupersetOf({"200 calls", "3 calls", "1 call", "10 calls", "4 messages"}));
  EXPECT_THAT(sut.textsOf("bad"), testing::IsSupersetOf({"2 failed", "4 failed"}));
}

TEST(APictureOfCalls, HasAllItsTextsInsideAndNoneOnAnother) {
  EXPECT_THAT(drawn(callGraphOf(bothProcesses(), false)).misfits(), IsEmpty());
  EXPECT_THAT(drawn(callGraphOf(bothProcesses(), true)).misfits(), IsEmpty());
}

TEST(APictureOfCalls, FitsWhoeverCallsWhom) {
  TraceText text;
  unsigned state = 1;
  for (int number = 0; number < 60; ++number) {
    const auto service = [&] {
      state = state * 1103515245 + 12345;
      return "/service/with/a/name/" + std::to_string(state / 65536 % 25);
    };
    const std::string from = service();
    text.add(number, "calls", from, calls(service(), "m", number + 1));
  }
  const SvgPicture sut = drawn(callGraphOf({text.run()}, false));
  EXPECT_THAT(sut.misfits(), IsEmpty());
}

TEST(APictureOfCalls, IsDrawnOfNothing) {
  EXPECT_THAT(drawn(callGraphOf({TraceText().run()}, false)).misfits(), IsEmpty());
}

TEST(ACallGraph, TellsOfAnInterfaceThatIsCalledAndNotDeclared) {
  TraceText text;
  text.add(1, "service_declared", "/two", R"("kind":"immediate","interfaces":"A")").running(5);
  text.add(9, "calls", "/one", R"("channel":"/two","interface":"B","method":"m","count":1)");
  const CallGraph sut = callGraphOf({text.run()}, false);
  ASSERT_THAT(sut.nodes.at(0).interfaces, SizeIs(2));
  EXPECT_EQ(sut.nodes[0].interfaces[1].name, "B");
  EXPECT_TRUE(sut.nodes[0].interfaces[1].called);
  EXPECT_FALSE(sut.nodes[0].interfaces[1].declared);
  EXPECT_THAT(callGraphSvg(sut), HasSubstr("B (not declared)"));
}

TEST(ACallGraph, TellsThatEventsAreMissing) {
  const CallGraph sut =
      callGraphOf({TraceText().running(5).add(9, "lost", "", R"("events":3)").run()}, false);
  EXPECT_EQ(sut.lost, 3);
  EXPECT_THAT(callGraphSvg(sut), HasSubstr("3 events are missing"));
}

}  // namespace
}  // namespace zerva
