#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/live/StatusText.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::Not;

Answer example() {
  Answer answer;
  answer.process = 4711;
  answer.tells = true;
  answer.status = ProcessStatus();
  answer.status->process = 4711;
  answer.status->phase = "starting";
  answer.status->file = "station.directives";
  answer.status->waitsFor = "init of Slow";
  answer.status->upSeconds = 12.04;
  ServiceStatus wind;
  wind.interfaces = "WindIfc HeartbeatIfc";
  wind.channel = "/wind";
  wind.mode = "MT";
  wind.library = "libWind.so";
  wind.creator = "createWind";
  wind.type = "Wind of libWind.so";
  wind.state = ServiceState::Running;
  wind.stateSeconds = 0.5;
  wind.initSeconds = 0.0154;
  wind.executor = ExecutorStatus{1, 120, 3, 1, 2};
  wind.stuck = true;
  ServiceStatus slow;
  slow.interfaces = "SlowIfc";
  slow.channel = "/slow";
  slow.mode = "ST";
  slow.state = ServiceState::Initialising;
  slow.doing = "init of Slow";
  slow.stateSeconds = 250;
  slow.executor = ExecutorStatus{2, 0, 0, 0, 0};
  ServiceStatus clock;
  clock.interfaces = "ClockIfc";
  clock.mode = "legacy";
  clock.state = ServiceState::Failed;
  clock.why = "no\nlibrary";
  answer.status->services = {wind, slow, clock};
  return answer;
}

TEST(TheTable, HasALineForEachServiceOfAProcess) {
  EXPECT_EQ(
      statusTable({example()}),
      "process 4711, starting, up for 12.0 s, station.directives\n"
      "  waits for init of Slow\n"
      "  INTERFACES            STATE           CHANNEL  MODE    INIT     REQUESTS  QUEUED  "
      "ERRORS\n"
      "  WindIfc HeartbeatIfc  running, stuck  /wind    MT      0.015 s  120       3       2\n"
      "  SlowIfc               initialising    /slow    ST      -        0         0       0\n"
      "    for 250 s: init of Slow\n"
      "  ClockIfc              failed          -        legacy  -        -         -       -\n"
      "    failed: no?library\n");
}

TEST(TheTable, SaysThatAProcessDoesNotAnswer) {
  Answer silent;
  silent.process = 12;
  silent.tells = true;
  silent.why = "no answer in time";
  EXPECT_EQ(statusTable({silent}), "process 12, does not answer: no answer in time\n");
}

TEST(TheTable, SaysWhatAProcessServesThatDoesNotTellHowItIs) {
  Answer other;
  other.process = 13;
  EXPECT_EQ(statusTable({other}), "process 13, does not tell how it is\n");
  other.channels = {"/a", "/b"};
  EXPECT_EQ(statusTable({other}),
            "process 13, does not tell how it is; it serves:\n"
            "  /a\n"
            "  /b\n");
}

TEST(TheTable, SetsProcessesApart) {
  Answer one;
  one.process = 1;
  Answer two;
  two.process = 2;
  EXPECT_EQ(statusTable({one, two}),
            "process 1, does not tell how it is\n\nprocess 2, does not tell how it is\n");
}

TEST(TheTable, OfABusWithoutProcesses_SaysSo) {
  EXPECT_EQ(statusTable({}), "no process is on the bus\n");
}

TEST(OneService, IsShownWithAllThatIsKnown) {
  EXPECT_EQ(statusOf("HeartbeatIfc", {example()}),
            "interfaces  WindIfc HeartbeatIfc\n"
            "channel     /wind\n"
            "state       running, stuck, for 0.500 s\n"
            "mode        MT\n"
            "library     libWind.so\n"
            "creator     createWind\n"
            "type        Wind of libWind.so\n"
            "init        0.015 s\n"
            "requests    120\n"
            "serving     1\n"
            "queued      3\n"
            "errors      2\n"
            "process     4711, starting\n"
            "file        station.directives\n");
}

TEST(OneService, IsShownForEachProcessThatHasIt) {
  const std::string sut = statusOf("/slow", {example(), Answer(), example()});
  EXPECT_NE(sut.find("doing       init of Slow"), sut.rfind("doing       init of Slow"));
}

TEST(OneService, ThatFailed_IsShownWithTheReason) {
  EXPECT_THAT(statusOf("ClockIfc", {example()}), HasSubstr("failed      no?library\n"));
}

TEST(OneService, ThatNobodyHas_IsNothing) { EXPECT_EQ(statusOf("NoIfc", {example()}), ""); }

TEST(TheJson, HasAllProcessesAndServices) {
  Answer silent;
  silent.process = 12;
  silent.tells = true;
  silent.why = "too late";
  Answer other;
  other.process = 13;
  other.channels = {"/a"};
  const auto sut = nlohmann::json::parse(statusJson("", {example(), silent, other}));
  ASSERT_EQ(sut["processes"].size(), 3U);
  EXPECT_EQ(sut["processes"][0]["answers"], "yes");
  EXPECT_EQ(sut["processes"][0]["phase"], "starting");
  EXPECT_EQ(sut["processes"][0]["services"].size(), 3U);
  EXPECT_EQ(sut["processes"][0]["services"][0]["executor"]["requests"], 120);
  EXPECT_EQ(sut["processes"][0]["services"][0]["stuck"], true);
  EXPECT_EQ(sut["processes"][0]["services"][1]["init_seconds"], nullptr);
  EXPECT_EQ(sut["processes"][1]["answers"], "no");
  EXPECT_EQ(sut["processes"][1]["error"], "too late");
  EXPECT_EQ(sut["processes"][2]["answers"], "does not tell");
  EXPECT_EQ(sut["processes"][2]["channels"][0], "/a");
}

TEST(TheJson, HasOnlyTheServicesThatWereAskedFor) {
  const auto sut = nlohmann::json::parse(statusJson("SlowIfc", {example()}));
  ASSERT_EQ(sut["processes"][0]["services"].size(), 1U);
  EXPECT_EQ(sut["processes"][0]["services"][0]["channel"], "/slow");
}

}  // namespace
}  // namespace zerva
