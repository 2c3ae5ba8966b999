#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/trace/Comparison.h"
#include "tests/host/trace/TraceText.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/** A start of 100 ms in which a service's `init` takes a time. */
RunModel with(double init) { return TraceText().immediate(10, "/one", init).running(100).run(); }

const ComparedTime& timeOf(const Comparison& comparison, const std::string& name) {
  for (const ComparedTime& time : comparison.times) {
    if (time.name == name) return time;
  }
  throw std::out_of_range(name);
}

TEST(AComparisonOfStarts, FindsNothingInEqualOnes) {
  EXPECT_FALSE(compareStarts(with(20), with(20), {}).regressed());
}

TEST(AComparisonOfStarts, FindsAServiceThatBecameSlower) {
  const Comparison sut = compareStarts(with(20), with(30), {});
  EXPECT_TRUE(sut.regressed());
  EXPECT_TRUE(timeOf(sut, "/one").regressed);
  EXPECT_EQ(timeOf(sut, "/one").before, 24_ms);
  EXPECT_EQ(timeOf(sut, "/one").after, 34_ms);
  EXPECT_NEAR(timeOf(sut, "/one").change(), 41.7, 0.1);
  EXPECT_FALSE(timeOf(sut, "").regressed);
}

TEST(AComparisonOfStarts, AllowsWhatIsAllowed) {
  EXPECT_FALSE(compareStarts(with(20), with(30), {.percent = 50}).regressed());
  EXPECT_TRUE(compareStarts(with(20), with(30), {.percent = 40}).regressed());
}

TEST(AComparisonOfStarts, DoesNotCountNoise) {
  EXPECT_FALSE(compareStarts(with(1), with(1.9), {}).regressed());
  EXPECT_TRUE(compareStarts(with(1), with(1.9), {.noise = 100000}).regressed());
}

TEST(AComparisonOfStarts, FindsAStartThatBecameSlowerAsAWhole) {
  const RunModel slower = TraceText().immediate(10, "/one", 20).running(130).run();
  const Comparison sut = compareStarts(with(20), slower, {});
  EXPECT_TRUE(timeOf(sut, "").regressed);
  EXPECT_FALSE(timeOf(sut, "/one").regressed);
}

TEST(AComparisonOfStarts, CountsAServiceThatDoesNotComeUpAnyMore) {
  const RunModel broken = TraceText()
                              .add(10, "service_declared", "/one", R"("kind":"immediate")")
                              .add(11, "failed", "/one", R"("what":"service","error":"none")")
                              .running(100)
                              .run();
  EXPECT_TRUE(compareStarts(with(20), broken, {}).regressed());
  EXPECT_FALSE(compareStarts(broken, with(20), {}).regressed());
}

TEST(AComparisonOfStarts, DoesNotCountALazyServiceThatNobodyAskedFor) {
  TraceText made;
  made.add(1, "service_declared", "/lazy", R"("kind":"lazy")").running(100);
  const RunModel unasked = made.run();
  made.addOn(20, 200, "creation_begins", "/lazy").addOn(20, 210, "init_begins", "/lazy");
  made.addOn(20, 220, "init_ended", "/lazy");
  EXPECT_FALSE(compareStarts(made.run(), unasked, {}).regressed());
}

TEST(AComparisonOfStarts, DoesNotCountServicesThatTheOtherFileDoesNotHave) {
  const RunModel empty = TraceText().running(100).run();
  EXPECT_FALSE(compareStarts(with(20), empty, {}).regressed());
  EXPECT_FALSE(compareStarts(empty, with(20), {}).regressed());
}

TEST(AComparisonOfStarts, IsTold) {
  const std::string text = comparisonText(compareStarts(with(20), with(30), {}));
  EXPECT_THAT(text, HasSubstr("/one                24.0 ms    34.0 ms    +41.7 %  slower\n"));
  EXPECT_THAT(text, HasSubstr("Something became slower by more than 10 % and 1.00 ms\n"));
  EXPECT_THAT(comparisonText(compareStarts(with(20), with(20), {})),
              HasSubstr("Nothing became slower"));
}

TEST(AComparisonOfStarts, IsJsonToo) {
  const auto json = nlohmann::json::parse(comparisonJson(compareStarts(with(20), with(30), {})));
  EXPECT_EQ(json.at("regressed"), true);
  ASSERT_THAT(json.at("times"), SizeIs(2));
  EXPECT_EQ(json.at("times").at(0).at("service"), nullptr);
  EXPECT_EQ(json.at("times").at(1).at("after"), 34_ms);
}

}  // namespace
}  // namespace zerva
