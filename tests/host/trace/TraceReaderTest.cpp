#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "host/trace/TraceReader.h"
#include "tests/host/trace/TraceText.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

std::vector<TraceLine> read(const std::string& text) {
  std::istringstream in(text);
  return readTrace(in, "a.jsonl");
}

std::string errorOf(const std::string& text) {
  try {
    read(text);
  } catch (const TraceError& error) {
    return error.what();
  }
  return "";
}

TEST(ATraceThatIsRead, HasTheFieldsOfItsLines) {
  const auto lines =
      read(TraceText()
               .add(7, "call", "/one", R"("method":"m","duration":5,"times":[[3,4],[5,6]])")
               .text());
  const TraceLine& line = lines.back();
  EXPECT_EQ(line.event, "call");
  EXPECT_EQ(line.t, 7_ms);
  EXPECT_EQ(line.thread, 10);
  EXPECT_EQ(line.threadName, "thread");
  EXPECT_EQ(line.service, "/one");
  EXPECT_EQ(line.text("method"), "m");
  EXPECT_EQ(line.number("duration"), 5);
  EXPECT_EQ(line.begin(), 7_ms - 5);
  ASSERT_THAT(line.times, SizeIs(2));
  EXPECT_EQ(line.times[1].first, 5);
  EXPECT_EQ(line.times[1].second, 6U);
}

TEST(ATraceThatIsRead, IsInTheOrderOfTime) {
  const auto lines = read(TraceText().add(9, "later").add(3, "sooner").text());
  ASSERT_THAT(lines, SizeIs(4));
  EXPECT_EQ(lines[2].event, "sooner");
  EXPECT_EQ(lines[3].event, "later");
}

TEST(ATraceThatIsRead, IsWithoutALastLineThatIsCut) {
  const std::string text = TraceText().add(3, "whole").add(4, "cut").text();
  EXPECT_THAT(read(text.substr(0, text.size() - 10)), SizeIs(3));
}

TEST(ATraceThatIsRead, MayEndWithoutALineFeed) {
  const std::string text = TraceText().add(3, "whole").text();
  EXPECT_THAT(read(text.substr(0, text.size() - 1)), SizeIs(3));
}

TEST(ATraceThatIsRead, LeavesFieldsOutThatItDoesNotKnow) {
  EXPECT_THAT(read(TraceText().add(3, "new", "", R"("x":{"y":[1]},"z":null,"f":1.5)").text()),
              SizeIs(3));
}

TEST(ATraceThatIsRead, NamesFileAndLineOfOneThatIsBad) {
  const std::string error = errorOf(TraceText().text() + "nonsense\n" + TraceText().text());
  EXPECT_THAT(error, StartsWith("a.jsonl:3: error: this is no line of a trace: "));
}

TEST(ATraceThatIsRead, NamesFileAndLineOfOneThatLacksAField) {
  EXPECT_THAT(errorOf(TraceText().text() + "{\"event\":\"x\",\"t\":1}\n\n"),
              StartsWith("a.jsonl:3: error: "));
}

TEST(ATraceThatIsRead, IsNoFileOfAnotherKind) {
  EXPECT_THAT(errorOf("{\"event\":\"x\",\"t\":1,\"thread\":{\"id\":1,\"name\":\"\"}}\n"),
              HasSubstr("a.jsonl:1: error: this is no trace"));
  EXPECT_THAT(errorOf(""), HasSubstr("the trace is empty"));
}

TEST(ATraceThatIsRead, IsNotOfANewerVersion) {
  EXPECT_THAT(
      errorOf("{\"event\":\"trace\",\"t\":1,\"thread\":{\"id\":1,\"name\":\"\"},\"version\":2}\n"),
      HasSubstr("a.jsonl:1: error: this is a trace of version 2"));
}

TEST(ATraceThatIsRead, IsAFileThatIsThere) {
  EXPECT_THROW(readTraceFile("/none/a.jsonl"), TraceError);
}

TEST(ATraceThatIsRead, HasTimesThatCanBeReckonedWith) {
  for (const char* time : {"4611686018427387905", "-4611686018427387905", "18446744073709551615",
                           "1e300", "1.5", "\"7\"", "null"}) {
    const std::string field = time;
    EXPECT_THAT(errorOf(TraceText().add(7, "call", "", "\"duration\":" + field).add(8, "x").text()),
                HasSubstr("a.jsonl:3: error: this is no line of a trace: 'duration' is no time"))
        << time;
    EXPECT_THAT(errorOf(TraceText().text() + R"({"event":"x","t":)" + field +
                        R"(,"thread":{"id":1,"name":"n"}})" + "\n"),
                HasSubstr("a.jsonl:3: error: this is no line of a trace: 't' is no time"))
        << time;
  }
}

TEST(ATraceThatIsRead, HasCountsThatAreSome) {
  for (const char* number : {"-1", "18446744073709551615", "1e300", "1.5", "\"7\"", "null"}) {
    const std::string times = R"("times":[[1,)" + std::string(number) + "]]";
    EXPECT_THAT(errorOf(TraceText().add(7, "calls", "", times).add(8, "x").text()),
                HasSubstr("a.jsonl:3: error: this is no line of a trace: 'times' has what is no"))
        << number;
  }
  EXPECT_THAT(errorOf(TraceText().add(7, "calls", "", R"("times":[[1e300,1]])").add(8, "x").text()),
              HasSubstr("'times' is no time: 1e+300"));
  EXPECT_THAT(errorOf(R"({"event":"trace","t":1,"thread":{"id":1e300,"name":""}})"
                      "\n"),
              HasSubstr("this is the id of no thread: 1e+300"));
}

TEST(ATraceThatIsRead, IsNoDirectory) {
  try {
    readTraceFile("/tmp");
    FAIL();
  } catch (const TraceError& error) {
    EXPECT_STREQ(error.what(), "/tmp: error: this is a directory");
  }
}

}  // namespace
}  // namespace zerva
