#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/trace/CriticalPath.h"
#include "tests/host/trace/TraceText.h"

namespace zerva {
namespace {

using testing::ElementsAre;

/** Whose time is which, in milliseconds; neighbours of one name together. */
std::vector<std::string> owners(const RunModel& run) {
  std::vector<std::pair<std::string, Interval>> owners;
  for (const PathStep& step : criticalPath(run)) {
    const std::string name = step.service ? run.services[*step.service].name : "host";
    if (!owners.empty() && owners.back().first == name) {
      owners.back().second.end = step.when.end;
    } else {
      owners.emplace_back(name, step.when);
    }
  }
  std::vector<std::string> texts;
  for (const auto& [name, when] : owners) {
    texts.push_back(name + " " + std::to_string(when.begin / 1_ms) + "-" +
                    std::to_string(when.end / 1_ms));
  }
  return texts;
}

/** /one comes up, and in its `init` it calls /lazy, which is made meanwhile. */
TraceText oneThatWaitsForALazyOne() {
  TraceText text;
  text.add(1, "service_declared", "/lazy", R"("kind":"lazy")");
  text.add(2, "executor_started", "/lazy");
  text.immediate(10, "/one", 30).running(50);
  text.addOn(20, 20, "creation_begins", "/lazy").addOn(20, 25, "init_begins", "/lazy");
  text.addOn(20, 30, "init_ended", "/lazy");
  return text;
}

TEST(TheCriticalPath, FillsTheStartWithoutGaps) {
  const RunModel run =
      TraceText().immediate(5, "/one", 3).immediate(20, "/two", 3).running(40).run();
  std::int64_t at = run.start.begin;
  for (const PathStep& step : criticalPath(run)) {
    EXPECT_EQ(step.when.begin, at);
    at = step.when.end;
  }
  EXPECT_EQ(at, run.start.end);
}

TEST(TheCriticalPath, IsTheHostsBetweenServices) {
  const RunModel run =
      TraceText().immediate(5, "/one", 3).immediate(20, "/two", 3).running(40).run();
  EXPECT_THAT(owners(run),
              ElementsAre("host 0-5", "/one 5-12", "host 12-20", "/two 20-27", "host 27-40"));
}

TEST(TheCriticalPath, GoesThroughTheServiceThatIsWaitedFor) {
  TraceText text = oneThatWaitsForALazyOne();
  text.add(32, "call", "/one", R"("channel":"/lazy","method":"m",)" + duration(14));
  EXPECT_THAT(owners(text.run()), ElementsAre("host 0-1", "/lazy 1-2", "host 2-10", "/one 10-20",
                                              "/lazy 20-30", "/one 30-44", "host 44-50"));
}

TEST(TheCriticalPath, DoesNotGoThroughAServiceThatIsMadeBesideIt) {
  EXPECT_THAT(owners(oneThatWaitsForALazyOne().run()),
              ElementsAre("host 0-1", "/lazy 1-2", "host 2-10", "/one 10-44", "host 44-50"));
}

TEST(TheCriticalPath, EndsWhenServicesWaitForEachOther) {
  TraceText text = oneThatWaitsForALazyOne();
  text.add(32, "call", "/one", R"("channel":"/lazy","method":"m",)" + duration(14));
  text.addOn(20, 29, "call", "/lazy", R"("channel":"/one","method":"m",)" + duration(8));
  EXPECT_FALSE(criticalPath(text.run()).empty());
}

TEST(TheSharesOfTheCriticalPath, AddUpToTheStartAndHaveTheLargestFirst) {
  const RunModel run =
      TraceText().immediate(5, "/one", 3).immediate(20, "/two", 9).running(40).run();
  const auto shares = sharesOf(criticalPath(run));
  std::int64_t sum = 0;
  for (const PathShare& share : shares) sum += share.time;
  EXPECT_EQ(sum, run.start.length());
  ASSERT_EQ(shares.size(), 3U);
  EXPECT_FALSE(shares[0].service);
  EXPECT_EQ(shares[1].service, 1U);
}

}  // namespace
}  // namespace zerva
