#include <gtest/gtest.h>

#include "runtime/libServiceExecutor/RunningTasks.h"

namespace zerva {
namespace {

TEST(RunningTasksAre, YoungAsLongAsNoWholeRoundHasPassed) {
  RunningTasks sut;
  const auto first = sut.begin();
  EXPECT_FALSE(sut.nextRound());
  const auto second = sut.begin();
  EXPECT_EQ(sut.young(), 2U);

  EXPECT_TRUE(sut.nextRound()) << "the first is old";

  EXPECT_EQ(sut.young(), 1U);
  EXPECT_EQ(sut.count(), 2U);
  sut.end(first);
  EXPECT_EQ(sut.young(), 1U);
  sut.end(second);
  EXPECT_EQ(sut.count(), 0U);
}

TEST(RunningTasksAre, CountedNoMoreWhenTheyHaveEndedHoweverOldTheyAre) {
  RunningTasks sut;
  for (int rounds = 0; rounds < 5; ++rounds) {
    const auto begun = sut.begin();
    for (int round = 0; round < rounds; ++round) sut.nextRound();
    EXPECT_EQ(sut.count(), 1U);
    EXPECT_EQ(sut.young(), rounds < 2 ? 1U : 0U);
    sut.end(begun);
    EXPECT_EQ(sut.count(), 0U);
    EXPECT_EQ(sut.young(), 0U);
    EXPECT_FALSE(sut.nextRound());
    EXPECT_FALSE(sut.nextRound());
  }
}

}  // namespace
}  // namespace zerva
