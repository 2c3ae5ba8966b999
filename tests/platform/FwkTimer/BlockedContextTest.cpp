#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "framework/FwkTimer.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

/** The start of one timer is held in the context. */
class TimersWhoseContextBlocks : public testing::Test {
 protected:
  TimersWhoseContextBlocks() {
    context.channelOf = [this](Executable* owner) {
      if (owner == &blocked) gate.wait();
      return std::string();
    };
    other.onTimer = [this](int) { ++expiries; };
    starting = std::thread([this] { sut.startTimer(held); });
    EXPECT_TRUE(waitUntil([this] { return gate.waiting() == 1; }));
  }

  ~TimersWhoseContextBlocks() override {
    gate.open();
    starting.join();
  }

  zerva::Gate gate;
  ScriptedService blocked;
  ScriptedService other;
  std::atomic<int> expiries{0};
  ScriptedContext context;
  FwkTimer sut{&context};
  const int held = sut.createTimer(&blocked, 1);
  std::thread starting;
};

TEST_F(TimersWhoseContextBlocks, ServeTheirOtherOwners) {
  const int id = sut.createTimer(&other, 1);
  EXPECT_TRUE(sut.startTimer(id));
  EXPECT_TRUE(waitUntil([&] { return expiries >= 2; }));
  EXPECT_TRUE(sut.resetTimer(id));
  EXPECT_TRUE(sut.timerRunning(id));
  EXPECT_TRUE(sut.stopTimer(id));
}

TEST_F(TimersWhoseContextBlocks, CanDeleteTheOneThatIsHeld) {
  EXPECT_FALSE(sut.timerRunning(held));
  EXPECT_TRUE(sut.deleteTimer(held));
  gate.open();
  EXPECT_FALSE(sut.startTimer(held));
}

TEST(TimersWhoseOwnerBlocks, CanBeUsedByEverybodyElse) {
  zerva::Gate gate;
  ScriptedService owner;
  owner.onTimer = [&](int) { gate.wait(); };
  ScriptedContext context;
  FwkTimer sut(&context);
  const int id = sut.createTimer(&owner, 1);
  sut.startTimer(id);
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  EXPECT_TRUE(sut.timerRunning(id));
  const int another = sut.createTimer(&owner, 1);
  EXPECT_TRUE(sut.startTimer(another));
  EXPECT_TRUE(sut.deleteTimer(another));
  EXPECT_TRUE(sut.stopTimer(id));

  gate.open();
  sut.shutdown();
}

}  // namespace
