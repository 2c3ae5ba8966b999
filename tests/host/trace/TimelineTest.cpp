#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/trace/CriticalPath.h"
#include "host/trace/Panels.h"
#include "host/trace/RunModelBuilder.h"
#include "host/trace/Svg.h"
#include "host/trace/TimelineChart.h"
#include "host/trace/TimelineJson.h"
#include "host/trace/TraceReader.h"
#include "tests/host/trace/SvgPicture.h"
#include "tests/host/trace/TraceText.h"
#include "tests/support/FileText.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

SvgPicture drawn(const RunModel& run) { return SvgPicture::read(timelineSvg(run)); }

/** The names at the beginning of the rows, from top to bottom. */
std::vector<std::string> rowsOf(const SvgPicture& picture) {
  std::vector<std::string> rows;
  for (const auto& text : picture.texts) {
    if (text.group == "row" && text.cssClass == "name") rows.push_back(text.text);
  }
  return rows;
}

std::size_t boxesOf(const SvgPicture& picture, const std::string& cssClass) {
  return static_cast<std::size_t>(
      std::count_if(picture.boxes.begin(), picture.boxes.end(),
                    [&](const auto& box) { return box.cssClass == cssClass; }));
}

/** The name of the row that a height is in. */
std::string rowAt(const SvgPicture& picture, double y) {
  std::string name;
  for (const auto& text : picture.texts) {
    // A row begins that much above its name.
    constexpr double above = 16;
    const bool begins = text.group == "row" && text.cssClass == "name";
    if (begins && text.baseline - above <= y) name = text.text;
  }
  return name;
}

TraceText aThousandServices() {
  TraceText text;
  for (int number = 0; number < 1000; ++number) {
    const std::string name =
        "/a/rather/long/name/of/a/channel/of/service/number/" + std::to_string(number);
    text.immediate(20 * number, name, 1 + number % 7);
  }
  return text.running(20010);
}

TEST(ATimeline, HasARowForTheHostAndOneForEachServiceInTheOrderOfTheFile) {
  EXPECT_THAT(rowsOf(drawn(readRun(traceFile("weather.jsonl")))),
              ElementsAre("the host", "/zerva/serviceregistry", "/forecast", "/wind", "/log",
                          "ClockIfc", "/broken"));
}

TEST(ATimeline, HasAllItsTextsInsideAndNoneOnAnother) {
  EXPECT_THAT(drawn(readRun(traceFile("weather.jsonl"))).misfits(), IsEmpty());
  EXPECT_THAT(drawn(readRun(traceFile("harbour.jsonl"))).misfits(), IsEmpty());
}

TEST(ATimeline, OfAThousandServicesHasAllItsTextsInsideAndNoneOnAnother) {
  const SvgPicture sut = drawn(aThousandServices().run());
  EXPECT_THAT(rowsOf(sut), SizeIs(1001));
  EXPECT_THAT(sut.misfits(), IsEmpty());
}

TEST(ATimeline, HasABarForEachStageInItsRow) {
  const SvgPicture sut = drawn(TraceText().immediate(1, "/one", 5).running(20).run());
  // One more of each is in the legend.
  for (const char* stage : {"library", "creator", "executor", "announcement", "init"}) {
    EXPECT_EQ(boxesOf(sut, stage), 2U) << stage;
  }
  EXPECT_EQ(boxesOf(sut, "waiting"), 2U);
}

TEST(ATimeline, DrawsATimeAsLongAsItIs) {
  const SvgPicture sut = drawn(TraceText().immediate(0, "/one", 56).running(100).run());
  const auto found = std::find_if(sut.boxes.rbegin(), sut.boxes.rend(),
                                  [](const auto& box) { return box.cssClass == "init"; });
  ASSERT_NE(found, sut.boxes.rend());
  EXPECT_NEAR(found->width, 620 * 0.56, 0.2);
}

TEST(ATimeline, NamesTheTenSlowestTheSlowestFirst) {
  const RunModel run = aThousandServices().run();
  const auto sut = slowestOf(run, 10);
  ASSERT_THAT(sut, SizeIs(10));
  for (const ServiceRun* service : sut) EXPECT_EQ(service->total(Stage::Init), 7_ms);
}

TEST(ATimeline, ListsTheTenSlowestBesideTheRows) {
  const RunModel run = aThousandServices().run();
  const SvgPicture picture = drawn(run);
  std::vector<std::string> sut;
  for (const auto& text : picture.texts) {
    if (text.group == "slowest" && text.cssClass == "name") sut.push_back(text.text);
  }
  EXPECT_THAT(sut, SizeIs(10));
  EXPECT_THAT(nlohmann::json::parse(timelineJson(run)).at("slowest"), SizeIs(10));
}

/** How long the marks of the critical path are in each row, in pixels. */
std::map<std::string, double> marksOf(const SvgPicture& picture) {
  std::map<std::string, double> marks;
  for (const auto& box : picture.boxes) {
    if (box.cssClass == "critical" && box.group == "row") marks[rowAt(picture, box.y)] += box.width;
  }
  return marks;
}

/** A start with a service that nobody waits for, on a thread of its own. */
RunModel withOneBeside() {
  TraceText text;
  text.immediate(1, "/one", 30).add(2, "service_declared", "/beside", R"("kind":"lazy")");
  text.addOn(20, 10, "creation_begins", "/beside").addOn(20, 11, "init_begins", "/beside");
  text.addOn(20, 20, "init_ended", "/beside");
  return text.running(50).run();
}

TEST(ATimeline, MarksTheCriticalPathInTheRowsThatHaveIt) {
  for (const RunModel& run : {readRun(traceFile("weather.jsonl")), withOneBeside()}) {
    std::map<std::string, double> expected;
    for (const PathShare& share : sharesOf(criticalPath(run))) {
      const std::string name = share.service ? run.services[*share.service].name : "the host";
      const double part = static_cast<double>(share.time) / static_cast<double>(run.start.length());
      expected[name] += 620 * part;
    }
    const auto sut = marksOf(drawn(run));
    EXPECT_EQ(sut.size(), expected.size());
    for (const auto& [name, width] : sut) EXPECT_NEAR(width, expected[name], 3) << name;
  }
}

TEST(ATimeline, MarksNothingOfAServiceThatNobodyWaitedFor) {
  const auto sut = marksOf(drawn(withOneBeside()));
  EXPECT_TRUE(sut.contains("/one"));
  EXPECT_FALSE(sut.contains("/beside"));
}

TEST(ATimeline, TellsOfServicesThatFailedAndOfEventsThatAreMissing) {
  const SvgPicture sut = drawn(TraceText()
                                   .add(1, "service_declared", "/one", R"("kind":"immediate")")
                                   .add(2, "failed", "/one", R"("what":"service","error":"none")")
                                   .add(3, "lost", "", "\"events\":3")
                                   .running(4)
                                   .run());
  EXPECT_THAT(sut.textsOf("small"),
              Contains("1 service, 0 came up; the start took 4.00 ms; 1 failed; 3 events are "
                       "missing"));
}

TEST(ATimeline, IsDrawnOfATraceWithNothingInIt) {
  const SvgPicture sut = drawn(TraceText().run());
  EXPECT_THAT(rowsOf(sut), ElementsAre("the host"));
  EXPECT_THAT(sut.misfits(), IsEmpty());
}

/** The names that the services of a directive file have in the rows. */
std::vector<std::string> servicesOf(const std::string& directives) {
  std::vector<std::string> services{"the host"};
  std::istringstream lines(directives);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    std::string keyword;
    std::string field;
    if (!(fields >> keyword) || !keyword.starts_with("service_")) continue;
    fields >> field;
    if (field == "MT" || field == "ST") fields >> field;
    // Behind the library and the creator: the channel, or the interface of one that has none.
    fields >> field >> field;
    services.push_back(field);
  }
  return services;
}

TEST(ThePictureOfTheReadme, ShowsTheServicesOfTheDemo) {
  const std::string source = ZERVA_SOURCE_DIRECTORY;
  const SvgPicture sut = SvgPicture::read(readFile(source + "/docs/pictures/startup.svg"));
  const auto expected = servicesOf(readFile(source + "/examples/demo.directives"));
  ASSERT_THAT(expected, SizeIs(7));
  EXPECT_EQ(rowsOf(sut), expected);
  EXPECT_THAT(sut.misfits(), IsEmpty());
  EXPECT_GT(boxesOf(sut, "critical"), 1U);
  EXPECT_GT(boxesOf(sut, "init"), 1U);
}

TEST(ATimelinesPanels, LeaveTheTimeOutInWhichNothingComesUp) {
  TraceText text;
  text.add(1, "service_declared", "/lazy", R"("kind":"lazy")").running(5);
  text.addOn(20, 3600000, "creation_begins", "/lazy").addOn(20, 3600010, "init_begins", "/lazy");
  text.addOn(20, 3600020, "init_ended", "/lazy");
  text.add(7200000, "phase", "", R"("phase":"stopping")");
  text.add(7200007, "phase", "", R"("phase":"ended")");
  const auto sut = panelsOf(text.run(), 0);
  ASSERT_THAT(sut, SizeIs(3));
  EXPECT_EQ(sut[0].title, "Start: 5.00 ms");
  EXPECT_EQ(sut[1].when.begin, 3600000_ms - 1_ms);
  EXPECT_EQ(sut[1].when.end, 3600020_ms + 1_ms);
  EXPECT_EQ(sut[2].title, "Stop: 7.00 ms");
}

TEST(ATimelinesPanels, AreFewHoweverManyServicesAreMadeLater) {
  TraceText text;
  text.running(5);
  for (int number = 0; number < 50; ++number) {
    const std::string name = "/lazy" + std::to_string(number);
    text.addOn(20, 1000 * number + 900, "service_declared", name, R"("kind":"lazy")");
    text.addOn(20, 1000 * number + 1000, "creation_begins", name);
    text.addOn(20, 1000 * number + 1001, "init_ended", name);
  }
  EXPECT_LE(panelsOf(text.run(), 0).size(), 5U);
}

TEST(ATimelinesTicks, HaveRoundNumbersThatFitBesideEachOther) {
  Panel panel;
  panel.width = 620;
  for (std::int64_t length = 700; length < 100'000'000'000; length = length * 3) {
    panel.when = {0, length};
    const auto ticks = ticksOf(panel);
    ASSERT_GE(ticks.size(), 2U);
    EXPECT_GE(panel.place(ticks[1].at) - panel.place(ticks[0].at), textWidth(ticks[1].text, 10));
  }
}

TEST(ATimelinesTicks, HaveTheUnitThatNeedsFewDigits) {
  Panel panel;
  panel.width = 620;
  panel.when = {0, 5_ms};
  EXPECT_EQ(ticksOf(panel).at(1).text, "0.5 ms");
}

TEST(ATimelineAsJson, HasWhatTheChartShows) {
  const auto json = nlohmann::json::parse(timelineJson(readRun(traceFile("weather.jsonl"))));
  EXPECT_EQ(json.at("start"), 49_ms);
  EXPECT_EQ(json.at("services").size(), 6U);
  EXPECT_EQ(json.at("services").at(3).at("name"), "/log");
  EXPECT_EQ(json.at("services").at(3).at("coming_up"), 20_ms);
  EXPECT_EQ(json.at("services").at(3).at("waited"), 12_ms);
  EXPECT_EQ(json.at("services").at(5).at("error"), "Error opening library 'libBroken.so'");
  EXPECT_EQ(json.at("slowest").at(0), "/log");
}

TEST(ATimelineAsTraceEvents, HasABarForEachStageAndTheNamesOfTheThreads) {
  const auto lines = readTraceFile(traceFile("weather.jsonl"));
  const auto json =
      nlohmann::json::parse(timelineTraceEvents(RunModelBuilder("").build(lines), lines));
  bool init = false;
  bool thread = false;
  for (const auto& event : json.at("traceEvents")) {
    if (event.at("name") == "/log init") {
      init = true;
      EXPECT_EQ(event.at("ph"), "X");
      EXPECT_EQ(event.at("ts"), 1023000.0);
      EXPECT_EQ(event.at("dur"), 17000.0);
      EXPECT_EQ(event.at("pid"), 10);
    }
    if (event.at("name") == "thread_name" && event.at("tid") == 20) {
      thread = true;
      EXPECT_EQ(event.at("args").at("name"), "/forecast");
    }
  }
  EXPECT_TRUE(init);
  EXPECT_TRUE(thread);
}

}  // namespace
}  // namespace zerva
