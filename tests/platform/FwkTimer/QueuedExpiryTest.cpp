#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "framework/FwkTimer.h"
#include "tests/platform/BusyReceiver.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::BusyReceiver;
using zerva::waitUntil;

/** An expiry that waits in its owner's channel for its turn. */
class AQueuedExpiry : public testing::Test {
 protected:
  AQueuedExpiry() {
    context.channelOf = [](Executable*) { return "/busy"; };
    owner.onTimer = [this](int) { ++expiries; };
    channel.state().mailbox->serveWith(busy);
    timer.startTimer(id);
    EXPECT_TRUE(waitUntil([&] { return busy->waiting() == 1; }));
  }

  /** The owner gets to what waits for it. Only here is it called, on the test's own thread. */
  void serve() {
    for (zerva::Envelope& envelope : busy->take()) envelope.expiry->fire();
  }

  ScriptedContext context;
  ScriptedService owner;
  int expiries = 0;
  const std::shared_ptr<BusyReceiver> busy = std::make_shared<BusyReceiver>(&owner);
  CommsChannel channel{"/busy", nullptr};
  FwkTimer timer{&context};
  const int id = timer.createTimer(&owner, 1);
};

TEST_F(AQueuedExpiry, IsDeliveredWhenTheTimerRunsOn) {
  serve();
  EXPECT_EQ(expiries, 1);
}

TEST_F(AQueuedExpiry, IsDroppedWhenTheTimerIsStopped) {
  ASSERT_TRUE(timer.stopTimer(id));
  serve();
  EXPECT_EQ(expiries, 0);
}

TEST_F(AQueuedExpiry, IsDroppedWhenTheTimerIsDeleted) {
  ASSERT_TRUE(timer.deleteTimer(id));
  serve();
  EXPECT_EQ(expiries, 0);
}

TEST_F(AQueuedExpiry, IsDroppedWhenTheTimerIsReset) {
  std::vector<zerva::Envelope> before = busy->take();
  ASSERT_TRUE(timer.resetTimer(id));

  before.at(0).expiry->fire();

  EXPECT_EQ(expiries, 0);
  ASSERT_TRUE(waitUntil([&] { return busy->waiting() == 1; })) << "the reset timer expires";
  serve();
  EXPECT_EQ(expiries, 1);
}

TEST_F(AQueuedExpiry, IsDroppedWhenTheTimerWasStoppedAndStartedAgain) {
  std::vector<zerva::Envelope> before = busy->take();
  ASSERT_TRUE(timer.stopTimer(id));
  ASSERT_TRUE(timer.startTimer(id));

  before.at(0).expiry->fire();

  EXPECT_EQ(expiries, 0);
}

TEST_F(AQueuedExpiry, IsDroppedAfterTheShutdownOfTheTimers) {
  timer.shutdown();
  serve();
  EXPECT_EQ(expiries, 0);
}

TEST(AQueuedExpiryOfAServiceWithOneThread, IsDroppedAfterTheShutdownOfTheTimers) {
  zerva::Gate gate;
  std::atomic<int> expiries{0};
  ScriptedService service([&](const std::string& request) {
    if (request == "busy") gate.wait();
    return request;
  });
  service.onTimer = [&](int) { ++expiries; };
  ScriptedService other;
  std::atomic<int> periods{0};
  other.onTimer = [&](int) { ++periods; };
  ExecutorWorld world;
  world.context.channelOf = [&](Executable* owner) {
    return owner == &service ? std::string("/svc") : std::string();
  };
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/svc", "busy");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  FwkTimer sut(&world.context);
  sut.startTimer(sut.createTimer(&service, 1));
  sut.startTimer(sut.createTimer(&other, 1));
  // The expiry of the first waits by then.
  ASSERT_TRUE(waitUntil([&] { return periods >= 5; }));

  sut.shutdown();
  gate.open();
  ask("/svc", "after");

  EXPECT_EQ(expiries, 0);
  world.end();
}

}  // namespace
