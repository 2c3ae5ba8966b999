#include <stdexcept>

#include "tests/contract/ContractTest.h"
#include "tests/support/ExecutorWorld.h"

namespace {

class AnExecutor : public ContractTest, public testing::WithParamInterface<Mode> {
 protected:
  Journal journal;
  ScriptedService service{[this](const std::string& request) {
    journal.add(request);
    if (request == "bad") {
      throw std::runtime_error("refused");
    }
    return request;
  }};
  ExecutorWorld world;
};

TEST_P(AnExecutor, KeepsRequestsInOrderUntilItIsStarted) {
  ServiceExecutor& sut = world.build(&service, "/svc", Mode::ST);
  CommsChannel caller("/caller", nullptr);
  EXPECT_TRUE(caller.sendTo("/svc", "1"));
  EXPECT_TRUE(caller.sendTo("/svc", "2"));
  EXPECT_TRUE(journal.entries().empty());
  ExecutorWorld::start(sut);
  EXPECT_EQ(ask(caller, "/svc", "3").data, "3");
  EXPECT_EQ(journal.entries(), (std::vector<std::string>{"1", "2", "3"}));
}

TEST_P(AnExecutor, TurnsAnExceptionIntoAnErrorAndGoesOn) {
  world.run(&service, "/svc", GetParam());
  const Answer bad = ask("/svc", "bad");
  EXPECT_FALSE(bad.ok);
  EXPECT_EQ(bad.error, "refused");
  EXPECT_EQ(bad.data, "bad");
  EXPECT_TRUE(ask("/svc", "good").ok);
}

TEST_P(AnExecutor, TakesNothingAfterItsShutdownWhichMayBeRepeated) {
  ServiceExecutor& sut = world.run(&service, "/svc", GetParam());
  sut.shutdown();
  sut.shutdown();
  EXPECT_FALSE(ask("/svc", "late").ok);
  EXPECT_TRUE(journal.entries().empty());
}

TEST_P(AnExecutor, AnswersWhatItDidNotServeWithAnErrorWhenItIsShutDown) {
  ServiceExecutor& sut = world.build(&service, "/svc", GetParam());
  CommsChannel caller("/caller", nullptr);
  CommsChannelDataContainerMessage queued;
  queued.setChannel("/svc");
  queued.setRequestId(1);
  EXPECT_TRUE(caller.send(queued));
  sut.shutdown();
  EXPECT_FALSE(caller.receiveReply(queued, 1));
  EXPECT_NE(queued.getError(), "");
}

TEST_P(AnExecutor, ThatWasNeverStarted_CanBeDeletedWithItsChannel) {
  ServiceExecutor& sut = world.build(nullptr, "/svc", GetParam());
  world.remove(sut);
  CommsChannel caller("/caller", nullptr);
  EXPECT_FALSE(caller.isServed("/svc"));
}

TEST_P(AnExecutor, MakesALazyServiceWithTheFirstMessageAndOnlyOnce) {
  int made = 0;
  world.context.make = [&] {
    ++made;
    return &service;
  };
  world.runLazy("/lazy", GetParam());
  CommsChannel caller("/caller", nullptr);
  EXPECT_TRUE(caller.isServed("/lazy"));
  EXPECT_EQ(made, 0);
  EXPECT_EQ(ask(caller, "/lazy", "1").data, "1");
  EXPECT_EQ(ask(caller, "/lazy", "2").data, "2");
  EXPECT_EQ(made, 1);
}

TEST_P(AnExecutor, MakesALazyServiceForInitService) {
  int made = 0;
  world.context.make = [&] {
    ++made;
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  sut.initService();
  sut.initService();
  EXPECT_EQ(made, 1);
}

TEST_P(AnExecutor, TriesAgainWhenALazyServiceCouldNotBeMade) {
  int attempts = 0;
  world.context.make = [&]() -> Service* { return ++attempts == 1 ? nullptr : &service; };
  world.runLazy("/lazy", GetParam());
  EXPECT_FALSE(ask("/lazy", "1").ok);
  EXPECT_TRUE(ask("/lazy", "2").ok);
}

TEST_P(AnExecutor, TakesAnExceptionInTheMakingOfALazyServiceAsFinal) {
  int attempts = 0;
  world.context.make = [&]() -> Service* {
    ++attempts;
    throw std::runtime_error("never");
  };
  ServiceExecutor& sut = world.runLazy("/lazy", GetParam());
  EXPECT_THAT(ask("/lazy", "1").error, testing::HasSubstr("never"));
  EXPECT_THAT(ask("/lazy", "2").error, testing::HasSubstr("never"));
  sut.initService();
  EXPECT_EQ(attempts, 1);
}

TEST_P(AnExecutor, HasInitServiceReturnAtOnceWithoutAnythingToMake) {
  ServiceExecutor& immediate = world.run(&service, "/svc", GetParam());
  immediate.initService();
  ServiceExecutor& notStarted = world.buildLazy("/lazy", GetParam());
  notStarted.initService();
  notStarted.shutdown();
  notStarted.initService();
  EXPECT_TRUE(journal.entries().empty());
}

TEST_P(AnExecutor, TellsAThreadIdOnlyWhenItNeedsAThread) {
  Threader threader;
  unsigned long immediate = 1;
  world.build(&service, "/svc", GetParam()).startThread(threader, immediate);
  EXPECT_EQ(immediate != 0, GetParam() == Mode::ST);
  unsigned long lazy = 0;
  world.buildLazy("/lazy", GetParam()).startThread(threader, lazy);
  EXPECT_NE(lazy, 0U);
}

INSTANTIATE_TEST_SUITE_P(Modes, AnExecutor, testing::Values(Mode::ST, Mode::MT),
                         [](const auto& mode) { return mode.param == Mode::ST ? "ST" : "MT"; });

}  // namespace
