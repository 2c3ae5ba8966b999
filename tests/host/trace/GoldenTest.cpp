// What a person sees, whole. Set ZERVA_WRITE_GOLDEN to write the files anew, then look at them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "host/trace/Advice.h"
#include "host/trace/Comparison.h"
#include "host/trace/GraphChart.h"
#include "host/trace/RunModelBuilder.h"
#include "host/trace/TimelineChart.h"
#include "host/trace/TimelineJson.h"
#include "tests/host/trace/TraceText.h"
#include "tests/support/FileText.h"

namespace zerva {
namespace {

void expectGolden(const std::string& name, const std::string& text) {
  if (std::getenv("ZERVA_WRITE_GOLDEN") != nullptr) std::ofstream(traceFile(name)) << text;
  EXPECT_EQ(readFile(traceFile(name)), text) << name;
}

RunModel weather() { return readRun(traceFile("weather.jsonl")); }
RunModel harbour() { return readRun(traceFile("harbour.jsonl")); }

TEST(TheTimelineOfTheWeather, IsAsItWas) { expectGolden("weather.svg", timelineSvg(weather())); }

TEST(TheTimelineOfTheWeather, IsAsItWasInJson) {
  expectGolden("weather.json", timelineJson(weather()));
}

TEST(TheCallsOfWeatherAndHarbour, AreAsTheyWere) {
  expectGolden("calls.svg", callGraphSvg(callGraphOf({weather(), harbour()}, false)));
}

TEST(TheAdviceForWeatherAndHarbour, IsAsItWas) {
  expectGolden("advice.txt", adviceText(adviceFor({weather(), harbour()}, {})));
}

TEST(TheComparisonOfWeatherAndHarbour, IsAsItWas) {
  expectGolden("comparison.txt", comparisonText(compareStarts(weather(), harbour(), {})));
}

}  // namespace
}  // namespace zerva
