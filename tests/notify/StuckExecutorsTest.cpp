#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/notify/StuckExecutors.h"

namespace zerva {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr StuckExecutors::Clock::time_point start{};

TEST(AnExecutor, IsStuckWhenSomethingIsQueuedAndNothingMovesForTheWholeTime) {
  StuckExecutors sut(seconds(5));
  EXPECT_THAT(sut.look({{1, 7, 2, "tide"}}, start), IsEmpty());
  EXPECT_THAT(sut.look({{1, 7, 3, "tide"}}, start + seconds(4)), IsEmpty());
  EXPECT_THAT(sut.look({{1, 7, 3, "tide"}}, start + seconds(5)), ElementsAre("tide"));
}

TEST(AnExecutor, IsNotStuckWhenItMoves) {
  StuckExecutors sut(seconds(5));
  EXPECT_THAT(sut.look({{1, 7, 2, "tide"}}, start), IsEmpty());
  EXPECT_THAT(sut.look({{1, 8, 2, "tide"}}, start + seconds(4)), IsEmpty());
  EXPECT_THAT(sut.look({{1, 8, 2, "tide"}}, start + seconds(8)), IsEmpty());
  EXPECT_THAT(sut.look({{1, 8, 2, "tide"}}, start + seconds(9)), ElementsAre("tide"));
}

TEST(AnExecutor, IsNotStuckWhenNothingIsQueued) {
  StuckExecutors sut(seconds(5));
  EXPECT_THAT(sut.look({{1, 7, 0, ""}}, start), IsEmpty());
  EXPECT_THAT(sut.look({{1, 7, 0, ""}}, start + seconds(50)), IsEmpty());
  EXPECT_THAT(sut.look({{1, 7, 1, "tide"}}, start + seconds(51)), IsEmpty());
}

TEST(AnExecutor, IsStuckNoLongerWhenItMovesAgain) {
  StuckExecutors sut(seconds(5));
  sut.look({{1, 7, 2, "tide"}}, start);
  EXPECT_THAT(sut.look({{1, 7, 2, "tide"}}, start + seconds(5)), ElementsAre("tide"));
  EXPECT_THAT(sut.look({{1, 8, 1, "tide"}}, start + seconds(6)), IsEmpty());
}

TEST(AnExecutor, IsStuckWhateverTheOthersDo) {
  StuckExecutors sut(seconds(5));
  sut.look({{1, 7, 2, "tide"}, {2, 1, 1, "wind"}}, start);
  EXPECT_THAT(sut.look({{1, 7, 2, "tide"}, {2, 9, 1, "wind"}}, start + seconds(5)),
              ElementsAre("tide"));
}

TEST(AnExecutor, IsForgottenWhenItIsGone) {
  StuckExecutors sut(seconds(5));
  sut.look({{1, 7, 2, "tide"}}, start);
  sut.look({}, start + seconds(1));
  EXPECT_THAT(sut.look({{1, 7, 2, "tide"}}, start + seconds(6)), IsEmpty());
}

}  // namespace
}  // namespace zerva
