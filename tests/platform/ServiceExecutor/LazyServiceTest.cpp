#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zerva::concurrently;
using zerva::waitUntil;

class ALazyService : public testing::TestWithParam<Mode> {
 protected:
  ExecutorWorld world;
  Journal journal;
  ScriptedService service{[this](const std::string& request) {
    journal.add(request);
    return request;
  }};
};

TEST_P(ALazyService, IsMadeByTheFirstMessageOnTheThreadOfItsExecutor) {
  std::atomic<unsigned long> maker{0};
  world.context.make = [&] {
    maker = pthread_self();
    journal.add("made");
    return &service;
  };
  ServiceExecutor& sut = world.buildLazy("/lazy", GetParam());
  Threader threader;
  unsigned long threadId = 0;
  sut.startThread(threader, threadId);
  EXPECT_THAT(journal.entries(), ElementsAre());

  EXPECT_EQ(ask("/lazy", "1").data, "1");

  EXPECT_THAT(journal.entries(), ElementsAre("made", "1"));
  EXPECT_EQ(maker, threadId);
  world.end();
}

TEST_P(ALazyService, IsMadeOnceForAllWhoAskAtTheSameTime) {
  std::atomic<int> made{0};
  world.context.make = [&] {
    ++made;
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  concurrently(20, [&](std::size_t thread) {
    if (thread % 2 == 0) {
      sut.initService();
      EXPECT_EQ(made, 1);
    } else {
      EXPECT_TRUE(ask("/lazy", "x").ok);
    }
  });
  EXPECT_EQ(made, 1);
  world.end();
}

TEST_P(ALazyService, ServesInOrderWhatCameBeforeItExisted) {
  ExecutorWorld onePoolThread(1);
  onePoolThread.context.make = [&] { return &service; };
  ServiceExecutor& sut = onePoolThread.buildLazy("/lazy", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "1");
  caller.sendTo("/lazy", "2");
  ExecutorWorld::start(sut);
  ask("/lazy", "3");
  EXPECT_THAT(journal.entries(), ElementsAre("1", "2", "3"));
  onePoolThread.end();
}

TEST_P(ALazyService, GivesNothingToThePoolUntilItExists) {
  zerva::Gate gate;
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  world.runLazy("/lazy", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "1");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  caller.sendTo("/lazy", "2");
  // The pool is free all the while.
  zerva::Gate poolRan;
  ASSERT_TRUE(world.pool.execute([&] { poolRan.open(); }));
  poolRan.wait();
  EXPECT_THAT(journal.entries(), ElementsAre());
  gate.open();
  ask("/lazy", "3");
  EXPECT_TRUE(waitUntil([&] { return journal.entries().size() == 3; }));
  world.end();
}

TEST_P(ALazyService, ThatCannotBeMade_AnswersEverybodyWithAnErrorAndIsTriedAgain) {
  int attempts = 0;
  world.context.make = [&]() -> Service* { return ++attempts < 3 ? nullptr : &service; };
  world.runLazy("/lazy", GetParam());
  EXPECT_THAT(ask("/lazy", "1").error, HasSubstr("could not be made"));
  EXPECT_THAT(ask("/lazy", "2").error, HasSubstr("could not be made"));
  EXPECT_EQ(ask("/lazy", "3").data, "3");
  EXPECT_EQ(attempts, 3);
  world.end();
}

TEST_P(ALazyService, WhoseMakingThrows_AnswersEveryLaterRequestWithThatError) {
  int attempts = 0;
  world.context.make = [&]() -> Service* {
    ++attempts;
    throw std::runtime_error("no licence");
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  EXPECT_THAT(ask("/lazy", "1").error, HasSubstr("no licence"));
  EXPECT_THAT(ask("/lazy", "2").error, HasSubstr("no licence"));
  sut.initService();
  EXPECT_EQ(attempts, 1);
  world.end();
}

TEST_P(ALazyService, DoesNotKeepItsOwnMakerWaiting) {
  ServiceExecutor* sut = nullptr;
  world.context.make = [&] {
    sut->initService();
    return &service;
  };
  sut = &world.buildLazy("/lazy", GetParam());
  ExecutorWorld::start(*sut);
  EXPECT_EQ(ask("/lazy", "x").data, "x");
  world.end();
}

TEST_P(ALazyService, DoesNotKeepWaitingWhomItsMakingAsks) {
  ServiceExecutor* sut = nullptr;
  ScriptedService helper([&](const std::string& request) {
    sut->initService();
    return request;
  });
  world.run(&helper, "/helper", Mode::ST);
  world.context.make = [&] {
    EXPECT_TRUE(ask("/helper", "x").ok);
    return &service;
  };
  sut = &world.buildLazy("/lazy", GetParam());
  ExecutorWorld::start(*sut);
  EXPECT_TRUE(ask("/lazy", "x").ok);
  world.end();
}

TEST_P(ALazyService, ThatIsBeingMade_ServesWhatItsOwnMakingAsksForAndNothingElse) {
  // A registry that is started lazily announces itself through a proxy to itself.
  zerva::Gate othersSent;
  world.context.real = [&](const std::string& interface, const std::string& channel) {
    journal.add("found " + interface + " " + channel);
    return &service;
  };
  world.context.make = [&] {
    othersSent.wait();
    EXPECT_EQ(ask("/lazy", "own").data, "own");
    journal.add("made");
    return &service;
  };
  world.runLazy("/lazy", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/lazy", "first");
  caller.sendTo("/lazy", "second");
  othersSent.open();
  ASSERT_TRUE(waitUntil([&] { return journal.entries().size() == 5; }));
  const auto entries = journal.entries();
  EXPECT_EQ(entries[0], "found Ifc /lazy");
  EXPECT_EQ(entries[1], "own");
  EXPECT_EQ(entries[2], "made");
  world.end();
}

TEST_P(ALazyService, ThatIsNotRecordedYet_RefusesWhatItsOwnMakingAsksFor) {
  world.context.make = [&] {
    EXPECT_EQ(ask("/lazy", "own").error, "the service of channel '/lazy' does not exist yet");
    return &service;
  };
  world.runLazy("/lazy", GetParam());
  EXPECT_TRUE(ask("/lazy", "x").ok);
  world.end();
}

TEST_P(ALazyService, LetsNobodyWaitForItBeyondItsShutdown) {
  zerva::Gate gate;
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  std::thread waiting([&] { sut.initService(); });
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  sut.shutdown();
  waiting.join();
  gate.open();
  world.end();
}

TEST_P(ALazyService, ThatWasNeverAskedFor_CanBeDeleted) {
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  world.remove(sut);
  EXPECT_EQ(ask("/lazy", "x").error, "nobody serves channel '/lazy'");
  world.end();
}

TEST_P(ALazyService, ThatWasNeverStarted_IsNotWaitedFor) {
  ServiceExecutor& sut = world.buildLazy("/lazy", GetParam());
  sut.initService();
  EXPECT_THAT(journal.entries(), ElementsAre());
  world.end();
}

TEST_P(ALazyService, ThatIsBeingMade_LeavesMessagesOfTheSameChainUntilItExists) {
  world.context.make = [&] {
    EXPECT_TRUE(ask("/helper", "x").ok);
    journal.add("made");
    return &service;
  };
  ExecutorWorld onePoolThread(1);
  onePoolThread.context.make = world.context.make;
  zerva::Gate allSent;
  ScriptedService helper([&](const std::string& request) {
    allSent.wait();
    return request;
  });
  onePoolThread.run(&helper, "/helper", Mode::ST);
  onePoolThread.runLazy("/lazy", GetParam());
  // What one request sends belongs together, the message that asks for the service first too.
  ScriptedService sender([&](const std::string& request) {
    CommsChannel channel("/test/sender", nullptr);
    channel.sendTo("/lazy", "1");
    channel.sendTo("/lazy", "2");
    allSent.open();
    return request;
  });
  onePoolThread.run(&sender, "/sender", Mode::ST);
  ask("/sender", "go");
  ask("/lazy", "3");
  EXPECT_THAT(journal.entries(), ElementsAre("made", "1", "2", "3"));
  onePoolThread.end();
}

INSTANTIATE_TEST_SUITE_P(Modes, ALazyService, testing::Values(Mode::ST, Mode::MT),
                         [](const auto& mode) { return mode.param == Mode::ST ? "ST" : "MT"; });

}  // namespace
