#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>

#include "tests/platform/ServiceExecutor/LogLines.h"
#include "tests/platform/ServiceExecutor/ReplyTimeoutIs.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::ReplyTimeoutIs;
using zerva::waitUntil;

/** Who waits while a lazy service is being made, and what the making waits for. */
class AMakingThatIsWaitedFor : public testing::TestWithParam<Mode> {
 protected:
  // A wait that nobody wakes does not end by itself before the test gives it up.
  const ReplyTimeoutIs longTime{std::chrono::hours(1)};
  zerva::Gate gate;
  ScriptedService service;
  ScriptedService slow{[this](const std::string& request) {
    gate.wait();
    return request;
  }};
};

// The waiters have the only place of the pool, and the making needs one.
TEST_P(AMakingThatIsWaitedFor, InInitServiceOnAPoolOfOneThread_HasThePoolForItself) {
  ServiceExecutor* lazy = nullptr;
  ScriptedService helper;
  ScriptedService waiter([&](const std::string& request) {
    lazy->initService();
    return request;
  });
  ExecutorWorld world(1);
  world.run(&helper, "/helper", Mode::MT);
  world.run(&waiter, "/waiter", Mode::MT);
  Answer helped{false, "", ""};
  world.context.make = [&] {
    gate.wait();
    helped = ask("/helper", "help");
    return &service;
  };
  lazy = &world.runLazy("/lazy", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  for (int i = 0; i < 3; ++i) {
    caller.sendTo("/waiter", "x");
  }
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  gate.open();

  EXPECT_TRUE(ask("/waiter", "x").ok);

  EXPECT_TRUE(helped.ok) << helped.error;
  world.end();
}

TEST_P(AMakingThatIsWaitedFor, ForAReplyOnAPoolOfOneThread_HasThePoolForItself) {
  ScriptedService helper;
  ScriptedService waiter([&](const std::string& request) {
    EXPECT_TRUE(ask("/lazy", request).ok);
    return request;
  });
  ExecutorWorld world(1);
  world.run(&helper, "/helper", Mode::MT);
  world.run(&waiter, "/waiter", Mode::MT);
  Answer helped{false, "", ""};
  world.context.make = [&] {
    helped = ask("/helper", "help");
    return &service;
  };
  world.runLazy("/lazy", GetParam());

  EXPECT_TRUE(ask("/waiter", "x").ok);

  EXPECT_TRUE(helped.ok) << helped.error;
  world.end();
}

TEST_P(AMakingThatIsWaitedFor, IsWokenFromItsOwnWaitByTheShutdownOfItsExecutor) {
  ExecutorWorld world;
  world.run(&slow, "/slow", Mode::ST);
  Journal errors;
  world.context.make = [&]() -> Service* {
    errors.add(ask("/slow", "x").error);
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  sut.shutdown();

  EXPECT_TRUE(waitUntil([&] { return !errors.entries().empty(); }));
  EXPECT_EQ(errors.entries().at(0), "the service that waits for channel '/slow' was shut down");
  gate.open();
  world.end();
}

TEST_P(AMakingThatIsWaitedFor, IsWokenFromInitServiceOfAnotherByTheShutdownOfItsExecutor) {
  ExecutorWorld others;
  others.context.make = [&] {
    gate.wait();
    return &slow;
  };
  ServiceExecutor& other = others.runLazy("/other", GetParam());
  ExecutorWorld world;
  std::atomic<bool> returned{false};
  world.context.make = [&] {
    other.initService();
    returned = true;
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  sut.shutdown();

  EXPECT_TRUE(waitUntil([&] { return returned.load(); }));
  gate.open();
  world.end();
  others.end();
}

TEST_P(AMakingThatIsWaitedFor, LetsARequestGoThatWaitsInInitServiceWhenItsExecutorIsShutDown) {
  ExecutorWorld world;
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  ServiceExecutor& lazy = world.runLazy("/lazy", Mode::ST);
  std::atomic<bool> returned{false};
  ScriptedService waiter([&](const std::string& request) {
    lazy.initService();
    returned = true;
    return request;
  });
  ServiceExecutor& sut = world.run(&waiter, "/waiter", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/waiter", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  sut.shutdown();

  EXPECT_TRUE(waitUntil([&] { return returned.load(); }));
  gate.open();
  world.end();
}

// What makes the service may be waiting for the one that waits here.
TEST_P(AMakingThatIsWaitedFor, LongerThanForAReply_LetsInitServiceGoWithAnError) {
  ExecutorWorld world;
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  const zerva::LogLines log;
  {
    const ReplyTimeoutIs shortTime(std::chrono::milliseconds(20));
    sut.initService();
  }
  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  EXPECT_THAT(log.journal.entries(),
              testing::Contains(testing::AllOf(testing::HasSubstr("/lazy"),
                                               testing::HasSubstr("longer than the reply"))));
  gate.open();
  sut.initService();
  EXPECT_TRUE(ask("/lazy", "x").ok);
  world.end();
}

INSTANTIATE_TEST_SUITE_P(Modes, AMakingThatIsWaitedFor, testing::Values(Mode::ST, Mode::MT),
                         [](const auto& mode) { return mode.param == Mode::ST ? "ST" : "MT"; });

}  // namespace
