#include <gtest/gtest.h>

#include <atomic>

#include "runtime/libServiceExecutor/Drain.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using zerva::waitUntil;

TEST(ADrain, ClosesEveryExecutorAlsoThoseThatNobodyRecorded) {
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/svc", Mode::ST);
  world.runLazy("/lazy", Mode::MT);

  const auto result = zerva::drainExecutors(std::chrono::seconds(10));

  EXPECT_TRUE(result.complete);
  EXPECT_THAT(result.underWay, IsEmpty());
  EXPECT_FALSE(ask("/svc", "x").ok);
  EXPECT_FALSE(ask("/lazy", "x").ok);
  world.end();
}

TEST(ADrain, NamesWhatIsStillUnderWayAtItsDeadline) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&service, "/stuck", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/stuck", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  const auto result = zerva::drainExecutors(std::chrono::milliseconds(10));

  EXPECT_FALSE(result.complete);
  EXPECT_THAT(result.underWay, ElementsAre(testing::AllOf(HasSubstr("ScriptedService"),
                                                          HasSubstr("Ifc"), HasSubstr("/stuck"))));
  EXPECT_EQ(zerva::executorsUnderWay(), result.underWay);
  gate.open();
  EXPECT_TRUE(zerva::drainExecutors(std::chrono::seconds(100)).complete);
  world.end();
}

TEST(ADrain, WaitsForAServiceThatIsBeingMade) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service;
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  world.runLazy("/lazy", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  EXPECT_THAT(zerva::executorsUnderWay(), ElementsAre(HasSubstr("createLazy in libLazy.so")));
  EXPECT_FALSE(zerva::drainExecutors(std::chrono::milliseconds(10)).complete);
  gate.open();
  EXPECT_TRUE(zerva::drainExecutors(std::chrono::seconds(100)).complete);
  world.end();
}

// The executor's thread once looked whether it was closed, let the lock go, and only then counted
// the making as under way: in between a drain found nothing to wait for.
TEST(ADrain, ThatIsComplete_IsFollowedByNoMaking) {
  for (int round = 0; round < 200; ++round) {
    std::atomic<bool> drained{false};
    std::atomic<bool> madeTooLate{false};
    ScriptedService service;
    ExecutorWorld world;
    world.context.make = [&] {
      madeTooLate = madeTooLate || drained;
      return &service;
    };
    world.runLazy("/lazy", Mode::ST);
    CommsChannel caller("/test/caller", nullptr);
    caller.sendTo("/lazy", "x");
    drained = zerva::drainExecutors(std::chrono::seconds(100)).complete;
    world.end();
    EXPECT_TRUE(drained);
    EXPECT_FALSE(madeTooLate);
  }
}

}  // namespace
