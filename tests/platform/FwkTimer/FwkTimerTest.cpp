#include <gmock/gmock.h>

#include <atomic>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "framework/FwkTimer.h"
#include "tests/platform/BusyReceiver.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::BusyReceiver;
using zerva::waitUntil;

class ATimer : public testing::Test {
 protected:
  ExecutorWorld world;
  ScriptedService owner;
  std::atomic<int> expiries{0};
  FwkTimer sut{&world.context};

  void haveChannel(const std::string& name) {
    world.context.channelOf = [name](Executable*) { return name; };
  }
};

TEST_F(ATimer, ExpiresEveryPeriodWithItsId) {
  std::atomic<int> seen{0};
  owner.onTimer = [&](int timer) {
    seen = timer;
    ++expiries;
  };
  const int id = sut.createTimer(&owner, 1);
  EXPECT_GT(id, 0);
  EXPECT_FALSE(sut.timerRunning(id));
  EXPECT_TRUE(sut.startTimer(id));
  EXPECT_TRUE(sut.timerRunning(id));
  EXPECT_TRUE(waitUntil([&] { return expiries >= 3; }));
  EXPECT_EQ(seen, id);
  sut.shutdown();
}

TEST_F(ATimer, IsNotMadeWithoutOwnerOrPeriod) {
  EXPECT_EQ(sut.createTimer(nullptr, 10), 0);
  EXPECT_EQ(sut.createTimer(&owner, 0), 0);
  EXPECT_EQ(sut.createTimer(&owner, -5), 0);
}

TEST_F(ATimer, SaysNoToOperationsOnAnIdThatIsNotItsOwn) {
  EXPECT_FALSE(sut.startTimer(99));
  EXPECT_FALSE(sut.stopTimer(99));
  EXPECT_FALSE(sut.resetTimer(99));
  EXPECT_FALSE(sut.deleteTimer(99));
  EXPECT_FALSE(sut.timerRunning(99));
}

TEST_F(ATimer, IsStartedAndStoppedOnceAtATime) {
  const int id = sut.createTimer(&owner, 100'000);
  EXPECT_FALSE(sut.stopTimer(id));
  EXPECT_TRUE(sut.startTimer(id));
  EXPECT_FALSE(sut.startTimer(id));
  EXPECT_TRUE(sut.resetTimer(id));
  EXPECT_TRUE(sut.stopTimer(id));
  EXPECT_FALSE(sut.stopTimer(id));
  EXPECT_TRUE(sut.resetTimer(id)) << "a reset starts a timer that stands still";
  EXPECT_TRUE(sut.deleteTimer(id));
  EXPECT_FALSE(sut.deleteTimer(id));
}

TEST_F(ATimer, OfAnOwnerWithAChannel_ExpiresOnTheThreadOfTheOwnersRequests) {
  std::atomic<std::thread::id> served{};
  std::atomic<std::thread::id> expired{};
  ScriptedService service([&](const std::string& request) {
    served = std::this_thread::get_id();
    return request;
  });
  service.onTimer = [&](int) {
    expired = std::this_thread::get_id();
    ++expiries;
  };
  haveChannel("/svc");
  world.run(&service, "/svc", Mode::ST);
  ask("/svc", "x");
  sut.startTimer(sut.createTimer(&service, 1));
  ASSERT_TRUE(waitUntil([&] { return expiries > 0; }));
  EXPECT_EQ(expired.load(), served.load());
  sut.shutdown();
  world.end();
}

TEST_F(ATimer, WhoseExpiryStillWaitsForItsTurn_IsNotDoubled) {
  const auto busy = std::make_shared<BusyReceiver>(&owner);
  CommsChannel channel("/busy", nullptr);
  channel.state().mailbox->serveWith(busy);
  haveChannel("/busy");
  sut.startTimer(sut.createTimer(&owner, 1));
  // A second timer, called on the timer's thread, tells that many periods went by.
  ScriptedService other;
  other.onTimer = [&](int) { ++expiries; };
  haveChannel("");
  sut.startTimer(sut.createTimer(&other, 1));
  ASSERT_TRUE(waitUntil([&] { return expiries >= 20; }));
  EXPECT_EQ(busy->waiting(), 1U);

  busy->take();

  EXPECT_TRUE(waitUntil([&] { return busy->waiting() == 1; })) << "one that is gone is followed";
  sut.shutdown();
}

TEST_F(ATimer, ThatIsStopped_DropsAnExpiryThatWasNotYetHandedOver) {
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return request;
  });
  service.onTimer = [&](int) { ++expiries; };
  haveChannel("/svc");
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/svc", "busy");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  const int id = sut.createTimer(&service, 1);
  sut.startTimer(id);
  std::atomic<int> periods{0};
  world.context.channelOf = [](Executable*) { return std::string(); };
  owner.onTimer = [&](int) { ++periods; };
  sut.startTimer(sut.createTimer(&owner, 1));
  ASSERT_TRUE(waitUntil([&] { return periods >= 5; }));

  EXPECT_TRUE(sut.stopTimer(id));
  gate.open();
  ask("/svc", "after");

  EXPECT_EQ(expiries, 0);
  sut.shutdown();
  world.end();
}

TEST_F(ATimer, OfTwoServicesOnChannelsOfOneName_ExpiresAtItsOwner) {
  ScriptedService older;
  ScriptedService younger;
  std::atomic<int> wrong{0};
  older.onTimer = [&](int) { ++wrong; };
  younger.onTimer = [&](int) { ++expiries; };
  haveChannel("/same");
  world.run(&older, "/same", Mode::ST);
  world.run(&younger, "/same", Mode::ST);
  sut.startTimer(sut.createTimer(&younger, 1));
  EXPECT_TRUE(waitUntil([&] { return expiries >= 3; }));
  EXPECT_EQ(wrong, 0);
  sut.shutdown();
  world.end();
}

TEST_F(ATimer, DoesNotHaveALazyServiceMadeThatIsNotItsOwner) {
  std::atomic<bool> made{false};
  world.context.make = [&] {
    made = true;
    return nullptr;
  };
  haveChannel("/lazy");
  world.runLazy("/lazy", Mode::ST);
  sut.startTimer(sut.createTimer(&owner, 1));
  ScriptedService other;
  other.onTimer = [&](int) { ++expiries; };
  haveChannel("");
  sut.startTimer(sut.createTimer(&other, 1));
  ASSERT_TRUE(waitUntil([&] { return expiries >= 10; }));
  EXPECT_FALSE(made);
  sut.shutdown();
  world.end();
}

TEST_F(ATimer, OfAServiceThatIsBeingMade_ExpiresOnceItExists) {
  ScriptedService lazy;
  lazy.onTimer = [&](int) { ++expiries; };
  haveChannel("/lazy");
  world.context.make = [&] {
    sut.startTimer(sut.createTimer(&lazy, 1));
    return &lazy;
  };
  world.runLazy("/lazy", Mode::ST);
  EXPECT_TRUE(ask("/lazy", "x").ok);
  EXPECT_TRUE(waitUntil([&] { return expiries >= 2; }));
  sut.shutdown();
  world.end();
}

TEST_F(ATimer, AsksForItsOwnersChannelOnce) {
  std::atomic<int> asked{0};
  world.context.channelOf = [&](Executable*) {
    ++asked;
    return std::string();
  };
  owner.onTimer = [&](int) { ++expiries; };
  const int id = sut.createTimer(&owner, 1);
  sut.startTimer(id);
  ASSERT_TRUE(waitUntil([&] { return expiries >= 3; }));
  sut.stopTimer(id);
  sut.startTimer(id);
  EXPECT_EQ(asked, 1);
  sut.shutdown();
  world.end();
}

TEST_F(ATimer, WhoseOwnerThrows_GoesOn) {
  owner.onTimer = [&](int) {
    ++expiries;
    throw std::runtime_error("not now");
  };
  sut.startTimer(sut.createTimer(&owner, 1));
  EXPECT_TRUE(waitUntil([&] { return expiries >= 3; }));
  sut.shutdown();
}

TEST_F(ATimer, WhoseOwnerThrowsOnItsChannel_IsReportedAndTheOwnerServesOn) {
  const zerva::RecordingSink log("Service Executor");
  ScriptedService service([](const std::string& request) { return request; });
  service.onTimer = [&](int) {
    ++expiries;
    throw std::runtime_error("not now");
  };
  haveChannel("/svc");
  world.run(&service, "/svc", Mode::ST);
  sut.startTimer(sut.createTimer(&service, 1));
  EXPECT_TRUE(waitUntil([&] { return expiries >= 3; }));
  EXPECT_EQ(ask("/svc", "x").data, "x");
  sut.shutdown();
  world.end();
  EXPECT_THAT(log.texts(), testing::Contains(testing::HasSubstr("timerExpired failed: not now")));
}

TEST_F(ATimer, MayBeStoppedByItsOwnExpiry) {
  owner.onTimer = [&](int timer) {
    sut.stopTimer(timer);
    ++expiries;
  };
  const int id = sut.createTimer(&owner, 1);
  sut.startTimer(id);
  ASSERT_TRUE(waitUntil([&] { return expiries >= 1; }));
  EXPECT_FALSE(sut.timerRunning(id));
  sut.shutdown();
  EXPECT_EQ(expiries, 1);
}

TEST_F(ATimer, IsOverAfterShutdownAndNoneRuns) {
  owner.onTimer = [&](int) { ++expiries; };
  const int id = sut.createTimer(&owner, 1);
  sut.startTimer(id);
  ASSERT_TRUE(waitUntil([&] { return expiries >= 1; }));
  sut.shutdown();
  sut.shutdown();  // may be repeated
  const int atShutdown = expiries;
  EXPECT_FALSE(sut.timerRunning(id));
  EXPECT_FALSE(sut.startTimer(id));
  EXPECT_FALSE(sut.resetTimer(id));
  EXPECT_EQ(sut.createTimer(&owner, 1), 0);
  EXPECT_EQ(expiries, atShutdown);
}

TEST_F(ATimer, LetsShutdownWaitForADeliveryUnderWay) {
  zerva::Gate gate;
  std::atomic<bool> finished{false};
  owner.onTimer = [&](int) {
    gate.wait();
    finished = true;
  };
  sut.startTimer(sut.createTimer(&owner, 1));
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  std::thread opening([&] { gate.open(); });
  sut.shutdown();
  EXPECT_TRUE(finished);
  opening.join();
}

TEST_F(ATimer, DoesNotLetShutdownWaitForTheDeliveryThatCallsIt) {
  owner.onTimer = [&](int) {
    sut.shutdown();
    ++expiries;
  };
  sut.startTimer(sut.createTimer(&owner, 1));
  EXPECT_TRUE(waitUntil([&] { return expiries == 1; }));
}

TEST_F(ATimer, MakesNoThreadBeforeOneIsStarted) {
  const auto threads = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                         std::filesystem::directory_iterator());
  };
  const auto before = threads();
  const int id = sut.createTimer(&owner, 100'000);
  EXPECT_EQ(threads(), before);
  sut.startTimer(id);
  EXPECT_EQ(threads(), before + 1);
}

}  // namespace
