#include "framework/Semaphore.h"
#include "tests/contract/ContractTest.h"

namespace {

class ASemaphore : public ContractTest {};

TEST_F(ASemaphore, GivesOutAsManyPermitsAsItHas) {
  Semaphore sut(2, 3, false);
  EXPECT_TRUE(sut.take(0));
  EXPECT_TRUE(sut.take(-1));
  EXPECT_FALSE(sut.take(0));
}

TEST_F(ASemaphore, TakesBackNoMoreThanItsMaximum) {
  Semaphore sut(0, 1, false);
  EXPECT_TRUE(sut.give());
  EXPECT_FALSE(sut.give());
  EXPECT_TRUE(sut.take(0));
  EXPECT_FALSE(sut.take(0));
}

TEST_F(ASemaphore, IsTakenOnceByOneThreadUnlessItIsRecursive) {
  Semaphore plain(1, 1, false);
  EXPECT_TRUE(plain.take(-1));
  EXPECT_FALSE(plain.take(0));

  Semaphore recursive(1, 1, true);
  EXPECT_TRUE(recursive.take(-1));
  EXPECT_TRUE(recursive.take(-1));
  EXPECT_TRUE(recursive.give());
  EXPECT_TRUE(recursive.give());
  EXPECT_FALSE(recursive.give());
}

}  // namespace
