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

TEST(TimersWhoseContextBlocks, DoAllThatDoesNotNeedIt) {
  zerva::Gate gate;
  ScriptedService blocked;
  ScriptedService other;
  std::atomic<int> expiries{0};
  other.onTimer = [&](int) { ++expiries; };
  ScriptedContext context;
  context.channelOf = [&](Executable* owner) {
    if (owner == &blocked) gate.wait();
    return std::string();
  };
  FwkTimer sut(&context);
  const int held = sut.createTimer(&blocked, 1);
  std::thread starting([&] { sut.startTimer(held); });
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  const int id = sut.createTimer(&other, 1);
  EXPECT_TRUE(sut.startTimer(id));
  EXPECT_TRUE(waitUntil([&] { return expiries >= 2; }));
  EXPECT_TRUE(sut.resetTimer(id));
  EXPECT_TRUE(sut.timerRunning(id));
  EXPECT_TRUE(sut.stopTimer(id));
  EXPECT_FALSE(sut.timerRunning(held));
  EXPECT_TRUE(sut.deleteTimer(held));

  gate.open();
  starting.join();
  EXPECT_FALSE(sut.timerRunning(held));
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
