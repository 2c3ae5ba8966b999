#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "host/live/CallsSoFar.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::SizeIs;

TEST(TheCallsSoFar, AreReadAsTheyWereWritten) {
  CallsSoFar written;
  written.calls.push_back({"/one", "/two", "Ifc", "method", 7, 2, {{1023, 3}, {4095, 4}}});
  written.others = 5;
  written.failedOthers = 1;
  const CallsSoFar sut = readCallsSoFar(writeCallsSoFar(written));
  ASSERT_THAT(sut.calls, SizeIs(1));
  EXPECT_EQ(sut.calls[0].caller, "/one");
  EXPECT_EQ(sut.calls[0].channel, "/two");
  EXPECT_EQ(sut.calls[0].interface, "Ifc");
  EXPECT_EQ(sut.calls[0].method, "method");
  EXPECT_EQ(sut.calls[0].count, 7U);
  EXPECT_EQ(sut.calls[0].failures, 2U);
  EXPECT_THAT(sut.calls[0].times, ElementsAre(Pair(1023, 3U), Pair(4095, 4U)));
  EXPECT_EQ(sut.others, 5U);
  EXPECT_EQ(sut.failedOthers, 1U);
}

TEST(TheCallsSoFar, AreReadAlsoWhenANameIsNoText) {
  CallsSoFar written;
  written.calls.push_back({"/one", "\xff", "Ifc", "method", 1, 0, {}});
  EXPECT_EQ(readCallsSoFar(writeCallsSoFar(written)).calls.at(0).channel, "\xef\xbf\xbd");
}

TEST(TheCallsSoFar, AreNotReadOutOfSomethingElse) {
  EXPECT_THROW(readCallsSoFar("no calls"), std::runtime_error);
  EXPECT_THROW(readCallsSoFar("{}"), std::runtime_error);
  EXPECT_THROW(readCallsSoFar(R"({"calls":[{}],"others":0,"failed_others":0})"),
               std::runtime_error);
}

TEST(TheCallsSoFar, AreNotReadWhereANumberIsNone) {
  for (const char* number : {"1e300", "-1", "0.5", "18446744073709551615", "true"}) {
    const std::string one = number;
    const std::string call =
        R"({"service":"","channel":"","interface":"","method":"","count":COUNT,"failures":FAILURES,)"
        R"("times":[[LAST,TIMES]]})";
    for (const char* wrong : {"COUNT", "FAILURES", "LAST", "TIMES"}) {
      std::string text = call;
      for (const char* name : {"COUNT", "FAILURES", "LAST", "TIMES"}) {
        text.replace(text.find(name), std::string(name).size(), name == wrong ? one : "1");
      }
      EXPECT_THROW(readCallsSoFar(R"({"calls":[)" + text + R"(],"others":0,"failed_others":0})"),
                   std::runtime_error)
          << text;
    }
  }
}

TEST(TheCallsSoFar, AreNoMoreThanAProcessTellsApart) {
  CallsSoFar written;
  for (std::size_t number = 0; number < SeenCalls::kMostOfAll + 3; ++number) {
    written.calls.push_back({"/one", std::to_string(number), "Ifc", "method", 5, 2, {}});
  }
  written.others = 1;
  written.failedOthers = 1;
  const CallsSoFar sut = readCallsSoFar(writeCallsSoFar(written));
  EXPECT_THAT(sut.calls, SizeIs(SeenCalls::kMostOfAll));
  EXPECT_EQ(sut.others, 16U);
  EXPECT_EQ(sut.failedOthers, 7U);
}

TEST(TheCallsSoFar, OfThisProcessAreThoseThatWereSeen) {
  SeenCalls::start();
  SeenCalls::add(0, {"/one", "/two", "Ifc", "method"}, 1000, true);
  for (std::size_t number = 0; number < SeenCalls::kMost; ++number) {
    const std::string channel = std::to_string(number);
    SeenCalls::add(0, {"", channel, "", ""}, 1, true);
  }
  SeenCalls::stop();
  const CallsSoFar sut = callsOfThisProcess();
  ASSERT_THAT(sut.calls, SizeIs(SeenCalls::kMost));
  EXPECT_EQ(sut.calls.back().caller, "/one");
  EXPECT_EQ(sut.calls.back().channel, "/two");
  EXPECT_EQ(sut.calls.back().interface, "Ifc");
  EXPECT_EQ(sut.calls.back().method, "method");
  EXPECT_EQ(sut.calls.back().count, 1U);
  EXPECT_EQ(sut.calls.back().failures, 1U);
  EXPECT_THAT(sut.calls.back().times, SizeIs(1));
  EXPECT_EQ(sut.others, 1U);
  EXPECT_EQ(sut.failedOthers, 1U);
}

}  // namespace
}  // namespace zerva
