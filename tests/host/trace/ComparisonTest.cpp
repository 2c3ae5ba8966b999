#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

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

TEST(AComparisonOfStarts, CountsAServiceThatTheSecondFileDoesNotHaveAnyMore) {
  const RunModel empty = TraceText().running(100).run();
  const Comparison sut = compareStarts(with(20), empty, {});
  EXPECT_TRUE(sut.regressed());
  EXPECT_THAT(comparisonText(sut), HasSubstr("does not come up any more"));
  EXPECT_FALSE(compareStarts(empty, with(20), {}).regressed());
}

TEST(AComparisonOfStarts, DoesNotJudgeServicesWhoseEventsMayBeMissing) {
  const RunModel lossy = TraceText()
                             .add(10, "service_declared", "/one", R"("kind":"immediate")")
                             .add(20, "lost", "", R"("events":7)")
                             .running(100)
                             .run();
  const RunModel empty = TraceText().add(20, "lost", "", R"("events":7)").running(100).run();
  for (const RunModel& after : {lossy, empty}) {
    const Comparison sut = compareStarts(with(20), after, {});
    EXPECT_FALSE(sut.regressed());
    EXPECT_THAT(comparisonText(sut), HasSubstr("7 events are missing after"));
    EXPECT_THAT(comparisonText(sut), HasSubstr("not known"));
  }
  EXPECT_THAT(comparisonText(compareStarts(lossy, with(20), {})),
              HasSubstr("7 events are missing before"));
}

TEST(AComparisonOfStarts, CountsASecondStartThatWasCutOff) {
  const RunModel cut = TraceText().immediate(10, "/one", 20).run();
  const Comparison sut = compareStarts(with(20), cut, {});
  EXPECT_TRUE(sut.regressed());
  EXPECT_THAT(comparisonText(sut), HasSubstr("was not over when its trace ended"));
}

TEST(AComparisonOfStarts, IsNotMadeWithAFirstStartThatWasCutOff) {
  const RunModel cut = TraceText().immediate(10, "/one", 20).run();
  EXPECT_THROW(compareStarts(cut, with(20), {}), std::invalid_argument);
}

TEST(AComparisonOfStarts, ComparesServicesOfTheSameNameInTheirOrder) {
  const RunModel twice =
      TraceText().immediate(0, "/one", 2).immediate(20, "/one", 40).running(100).run();
  EXPECT_FALSE(compareStarts(twice, twice, {}).regressed());
  const RunModel slower =
      TraceText().immediate(0, "/one", 9).immediate(20, "/one", 40).running(100).run();
  EXPECT_TRUE(compareStarts(twice, slower, {}).regressed());
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
