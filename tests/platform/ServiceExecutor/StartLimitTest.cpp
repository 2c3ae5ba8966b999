#include <gtest/gtest.h>

#include "runtime/libServiceExecutor/StartLimit.h"

namespace zerva {
namespace {

TEST(AStartLimit, IsAsHighAsThereAreProcessors) {
  StartLimit sut(2, 50);
  EXPECT_EQ(sut.tasks(), 2U);
  sut.setProcessors(4);
  EXPECT_EQ(sut.tasks(), 4U);
  EXPECT_FALSE(sut.isRaised());
}

TEST(AStartLimit, IsRaisedWhereTasksAreStuckUntilNoneWaits) {
  StartLimit sut(1, 50);
  sut.look(true, 1, 1);
  EXPECT_EQ(sut.tasks(), 8U);
  EXPECT_TRUE(sut.isRaised());
  sut.look(true, 9, 9);
  EXPECT_EQ(sut.tasks(), 50U) << "not beyond the most";
  sut.look(false, 9, 9);
  EXPECT_EQ(sut.tasks(), 50U);

  sut.reset();
  EXPECT_EQ(sut.tasks(), 1U);
}

TEST(AStartLimit, IsRaisedWhereATaskWaitsForLong) {
  StartLimit sut(1, 50);
  for (int look = 0; look < 4; ++look) sut.look(false, 3, 20);
  EXPECT_EQ(sut.tasks(), 1U) << "nobody knows how long it waits";
  for (int look = 0; look < 4; ++look) sut.look(false, 20, 40);
  EXPECT_EQ(sut.tasks(), 2U);
}

TEST(AStartLimit, IsNotRaisedWhereTasksGetOn) {
  StartLimit sut(1, 50);
  for (std::uint64_t look = 0; look < 100; ++look) sut.look(false, 10 * look + 1, 10 * look + 12);
  EXPECT_EQ(sut.tasks(), 1U);
}

}  // namespace
}  // namespace zerva
