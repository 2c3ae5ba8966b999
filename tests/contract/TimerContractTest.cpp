#include <atomic>

#include "framework/FwkTimer.h"
#include "tests/contract/ContractTest.h"
#include "tests/support/ExecutorWorld.h"

namespace {

using std::chrono::milliseconds;
using zerva::contract::advanceAndSettle;

class ATimer : public ContractTest {
 protected:
  ATimer() {
    owner.onTimer = [this](int id) {
      last = id;
      ++expiries;
    };
  }

  ScriptedContext context;
  ScriptedService owner;
  std::atomic<int> expiries{0};
  std::atomic<int> last{0};
  FwkTimer sut{&context};
};

TEST_F(ATimer, StandsStillUntilItIsStartedAndThenExpiresAgainAndAgain) {
  const int id = sut.createTimer(&owner, 5);
  EXPECT_GT(id, 0);
  EXPECT_FALSE(sut.timerRunning(id));
  EXPECT_TRUE(sut.startTimer(id));
  EXPECT_TRUE(sut.timerRunning(id));
  EXPECT_TRUE(advanceAndSettle(milliseconds(15), [&] { return expiries >= 3; }));
  EXPECT_EQ(last, id);
  sut.shutdown();
}

TEST_F(ATimer, NeedsAnOwnerAndAPeriod) {
  EXPECT_EQ(sut.createTimer(nullptr, 5), 0);
  EXPECT_EQ(sut.createTimer(&owner, 0), 0);
}

TEST_F(ATimer, IsStartedOnceAndStoppedOnce) {
  const int id = sut.createTimer(&owner, 100'000);
  EXPECT_FALSE(sut.stopTimer(id));
  EXPECT_TRUE(sut.startTimer(id));
  EXPECT_FALSE(sut.startTimer(id));
  EXPECT_TRUE(sut.stopTimer(id));
  EXPECT_FALSE(sut.timerRunning(id));
  EXPECT_FALSE(sut.stopTimer(id));
}

TEST_F(ATimer, RunsAfterAResetWhetherItRanOrNot) {
  const int id = sut.createTimer(&owner, 100'000);
  EXPECT_TRUE(sut.resetTimer(id));
  EXPECT_TRUE(sut.timerRunning(id));
  EXPECT_TRUE(sut.resetTimer(id));
  EXPECT_TRUE(sut.timerRunning(id));
}

TEST_F(ATimer, IsUnknownOnceItIsDeletedAndItsIdIsNotUsedAgain) {
  const int id = sut.createTimer(&owner, 5);
  EXPECT_TRUE(sut.deleteTimer(id));
  EXPECT_FALSE(sut.deleteTimer(id));
  EXPECT_FALSE(sut.startTimer(id));
  EXPECT_FALSE(sut.resetTimer(id));
  EXPECT_FALSE(sut.stopTimer(id));
  EXPECT_FALSE(sut.timerRunning(id));
  EXPECT_NE(sut.createTimer(&owner, 5), id);
}

TEST_F(ATimer, IsOverForGoodAfterShutdownWhichMayBeRepeated) {
  const int id = sut.createTimer(&owner, 100'000);
  sut.startTimer(id);
  sut.shutdown();
  sut.shutdown();
  EXPECT_FALSE(sut.timerRunning(id));
  EXPECT_FALSE(sut.startTimer(id));
  EXPECT_FALSE(sut.resetTimer(id));
  EXPECT_EQ(sut.createTimer(&owner, 5), 0);
}

}  // namespace
