#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/trace/Advice.h"
#include "tests/host/trace/TraceText.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<Advice> adviceOf(const TraceText& text) { return adviceFor({text.run()}, {}); }

/** One immediate service, up before the start is over after 100 ms. */
TraceText one() { return TraceText().immediate(10, "/one", 20).running(100); }

TraceText lazy(double asked, double made) {
  TraceText text;
  text.add(1, "service_declared", "/lazy", R"("kind":"lazy")").running(100);
  text.add(asked, "first_request", "/lazy", R"("from":"/p","by":"/caller")");
  text.addOn(20, asked, "creation_begins", "/lazy").addOn(20, made, "init_ended", "/lazy");
  return text;
}

TEST(AnAdvice, IsToMakeLazyWhatNobodyAskedAnything) {
  const auto sut = adviceOf(one().add(60000, "lost", "", "\"events\":0"));
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].kind, Advice::Kind::MakeLazy);
  EXPECT_EQ(sut[0].service, "/one");
  // The announcement stays.
  EXPECT_EQ(sut[0].saving, 23_ms);
  EXPECT_THAT(sut[0].reason, HasSubstr("nobody sent it anything in the 59.9 s after the start"));
}

TEST(AnAdvice, IsToMakeLazyWhatIsAskedLate) {
  const auto sut = adviceOf(one().add(60000, "first_request", "/one"));
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_THAT(sut[0].reason, HasSubstr("it was first asked 59.9 s after the start"));
}

TEST(AnAdvice, IsNotGivenForWhatIsNeededInTheStartOrSoonAfter) {
  EXPECT_THAT(adviceOf(one().add(50, "first_request", "/one").add(9000, "x")), IsEmpty());
  EXPECT_THAT(adviceOf(one().add(300, "first_request", "/one").add(9000, "x")), IsEmpty());
}

TEST(AnAdvice, IsNotGivenForWhatCallsOthersUnasked) {
  EXPECT_THAT(adviceOf(one()
                           .add(200, "calls", "/one",
                                R"("channel":"/two","interface":"I","method":"m","count":1)")
                           .add(9000, "x")),
              IsEmpty());
}

TEST(AnAdvice, IsNotGivenForWhatCallsOthersAndIsAskedLate) {
  EXPECT_THAT(adviceOf(one()
                           .add(200, "calls", "/one",
                                R"("channel":"/two","interface":"I","method":"m","count":1)")
                           .add(60000, "first_request", "/one")),
              IsEmpty());
}

TEST(AnAdvice, IsNotGivenWhereEventsAreMissing) {
  EXPECT_THAT(adviceOf(one().add(60000, "lost", "", "\"events\":1")), IsEmpty());
}

TEST(AnAdvice, IsNotGivenForATraceThatEndsSoon) {
  EXPECT_THAT(adviceOf(one().add(599, "x")), IsEmpty());
  EXPECT_THAT(adviceOf(one().add(600, "x")), SizeIs(1));
  EXPECT_THAT(adviceOf(one().add(599, "phase", "", R"("phase":"stopping")").add(9000, "x")),
              IsEmpty());
}

TEST(AnAdvice, IsNotGivenForAStartThatWasCutOff) {
  EXPECT_THAT(adviceOf(TraceText().immediate(10, "/one", 20).add(9000, "x")), IsEmpty());
}

TEST(AnAdvice, IsNotGivenForWhatIsMonitoredOrTheRegistry) {
  for (const char* interface : {"ExampleHeartbeatServiceIfc", "ServiceRegistryIfc"}) {
    TraceText text;
    text.add(1, "service_declared", "/one",
             R"("kind":"immediate","interfaces":")" + std::string(interface) + "\"");
    text.add(2, "init_begins", "/one").add(50, "init_ended", "/one").running(100);
    text.add(9000, "x");
    EXPECT_THAT(adviceOf(text), IsEmpty()) << interface;
  }
}

TEST(AnAdvice, IsNotGivenForWhatSavesLittle) {
  EXPECT_THAT(adviceFor({one().add(9000, "x").run()}, {.saving = 24_ms}), IsEmpty());
}

TEST(AnAdvice, IsToMakeImmediateWhatTheStartWaitsFor) {
  const auto sut = adviceOf(lazy(50, 70));
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].kind, Advice::Kind::MakeImmediate);
  EXPECT_EQ(sut[0].saving, 20_ms);
  EXPECT_EQ(sut[0].reason,
            "/caller asked for it before the start was over and waited for its making");
}

TEST(AnAdvice, IsToMakeImmediateWhatIsNeededSoonAfterTheStart) {
  const auto sut = adviceOf(lazy(400, 420));
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_THAT(sut[0].reason, HasSubstr("only 300 ms after the start"));
}

TEST(AnAdvice, IsNotGivenForLazyServicesThatAreAskedLateOrNever) {
  EXPECT_THAT(adviceOf(lazy(60000, 60020)), IsEmpty());
  EXPECT_THAT(
      adviceOf(TraceText().add(1, "service_declared", "/lazy", R"("kind":"lazy")").running(9)),
      IsEmpty());
}

TEST(Advice, HasFirstWhatSavesMost) {
  TraceText text;
  text.immediate(0, "/small", 2).immediate(10, "/large", 20).immediate(40, "/middle", 9);
  const auto sut = adviceOf(text.running(100).add(9000, "x"));
  ASSERT_THAT(sut, SizeIs(3));
  EXPECT_EQ(sut[0].service, "/large");
  EXPECT_EQ(sut[2].service, "/small");
}

TEST(Advice, IsTold) {
  EXPECT_THAT(adviceText(adviceOf(lazy(50, 70))),
              HasSubstr("a.directives: /lazy should not be lazy (service_instance)\n"));
  EXPECT_THAT(adviceText({}), HasSubstr("Nothing to advise"));
}

TEST(Advice, IsJsonToo) {
  const auto json = nlohmann::json::parse(adviceJson(adviceOf(lazy(50, 70))));
  ASSERT_THAT(json, SizeIs(1));
  EXPECT_EQ(json.at(0).at("advice"), "immediate");
  EXPECT_EQ(json.at(0).at("service"), "/lazy");
}

}  // namespace
}  // namespace zerva
