#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Waiting.h"
#include "tests/platform/ServiceExecutor/LogLines.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;
using zerva::concurrently;
using zerva::LogLines;
using zerva::waitUntil;

TEST(AnExecutorWithOneThread, ServesOneRequestAfterTheOtherOnAThreadOfItsOwn) {
  ExecutorWorld world;
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  std::mutex mutex;
  std::vector<std::thread::id> threads;
  ScriptedService service([&](const std::string& request) {
    overlapped = overlapped || ++inside > 1;
    {
      const std::lock_guard lock(mutex);
      threads.push_back(std::this_thread::get_id());
    }
    std::this_thread::yield();
    --inside;
    return request;
  });
  world.run(&service, "/svc", Mode::ST);

  concurrently(8, [](std::size_t) {
    for (int i = 0; i < 50; ++i) {
      ASSERT_TRUE(ask("/svc", "x").ok);
    }
  });

  EXPECT_FALSE(overlapped);
  EXPECT_THAT(threads, SizeIs(400));
  EXPECT_THAT(threads, testing::Each(threads.front()));
  EXPECT_NE(threads.front(), std::this_thread::get_id());
  world.end();
}

TEST(AnExecutorWithManyThreads, ServesRequestsAtTheSameTime) {
  ExecutorWorld world;
  zerva::Barrier bothInside(2);
  ScriptedService service([&](const std::string& request) {
    bothInside.arriveAndWait();
    return request;
  });
  world.run(&service, "/svc", Mode::MT);
  concurrently(2, [](std::size_t) { EXPECT_TRUE(ask("/svc", "x").ok); });
  world.end();
}

TEST(AnExecutorWithManyThreads, HasNoThreadOfItsOwn) {
  ExecutorWorld world;
  ScriptedService service;
  ServiceExecutor& sut = world.build(&service, "/svc", Mode::MT);
  Threader threader;
  unsigned long threadId = 1;
  sut.startThread(threader, threadId);
  EXPECT_EQ(threadId, 0U);
  world.end();
}

TEST(AnExecutorWithOneThread, TellsTheIdOfItsThread) {
  ExecutorWorld world;
  std::atomic<unsigned long> served{0};
  ScriptedService service([&](const std::string& request) {
    served = pthread_self();
    return request;
  });
  ServiceExecutor& sut = world.build(&service, "/svc", Mode::ST);
  Threader threader;
  unsigned long threadId = 0;
  sut.startThread(threader, threadId);
  ask("/svc", "x");
  EXPECT_EQ(threadId, served);
  world.end();
}

class AnExecutorInEitherMode : public testing::TestWithParam<Mode> {};

TEST_P(AnExecutorInEitherMode, KeepsRequestsUntilItIsStartedAndThenServesThemInOrder) {
  ExecutorWorld world(1);
  Journal journal;
  ScriptedService service([&](const std::string& request) {
    journal.add(request);
    return request;
  });
  ServiceExecutor& sut = world.build(&service, "/svc", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/svc", "1");
  caller.sendTo("/svc", "2");
  EXPECT_THAT(journal.entries(), SizeIs(0));

  ExecutorWorld::start(sut);
  ask("/svc", "3");

  EXPECT_EQ(journal.entries(), (std::vector<std::string>{"1", "2", "3"}));
  world.end();
}

TEST_P(AnExecutorInEitherMode, TurnsAnExceptionIntoAnErrorReplyAndALogLine) {
  LogLines log;
  ExecutorWorld world;
  ScriptedService service(
      [](const std::string&) -> std::string { throw std::runtime_error("out of paper"); });
  world.run(&service, "/svc", GetParam());

  const Answer answer = ask("/svc", "print");

  EXPECT_FALSE(answer.ok);
  EXPECT_EQ(answer.data, "print");
  EXPECT_EQ(answer.error, "out of paper");
  EXPECT_THAT(log.journal.entries(), Contains(HasSubstr("out of paper")));
  world.end();
}

/** Says something about each reply that only the next one could tell. */
class WritingService final : public Service {
 public:
  void init(SvcRTEContext* /*context*/) override {}

  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override {
    journal.add(message.getChannel() + ' ' + message.getData() + ' ' + reply.getChannel() +
                reply.getData() + reply.getError() + std::to_string(reply.getRequestId()));
    reply.setChannel("/elsewhere");
    reply.setRequestId(7);
    reply.setError("wrong");
    if (message.getData() == "throw") throw std::runtime_error("no");
    if (message.getData() == "answer") reply.setData("answered");
  }

  Journal journal;
};

TEST_P(AnExecutorInEitherMode, HandsOutNothingOfTheMessageBefore) {
  ExecutorWorld world;
  WritingService service;
  world.run(&service, "/svc", GetParam());
  EXPECT_EQ(ask("/svc", "answer").data, "answered");
  EXPECT_EQ(ask("/svc", "").data, "");
  EXPECT_FALSE(ask("/svc", "throw").ok);
  EXPECT_EQ(ask("/svc", "x").data, "");
  EXPECT_EQ(service.journal.entries(),
            (std::vector<std::string>{"/test/caller answer 0", "/test/caller  0",
                                      "/test/caller throw 0", "/test/caller x 0"}));
  world.end();
}

TEST_P(AnExecutorInEitherMode, KeepsNoDataOfAMessageThatWasServed) {
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/svc", GetParam());
  const auto mailbox = zerva::ChannelDirectory::instance().find("/svc");
  ASSERT_NE(mailbox, nullptr);
  for (int i = 0; i < 3; ++i) {
    zerva::Envelope envelope;
    const auto data = std::make_shared<const std::string>("data");
    envelope.data = data;
    envelope.chain = zerva::CallChain::begin();
    ASSERT_TRUE(mailbox->deliver(envelope));
    EXPECT_TRUE(waitUntil([&] { return data.use_count() == 1; }));
  }
  world.end();
}

TEST_P(AnExecutorInEitherMode, GoesOnAfterAnException) {
  ExecutorWorld world;
  ScriptedService service([](const std::string& request) -> std::string {
    if (request == "bad") {
      throw 42;  // of a type that nobody expects
    }
    return request;
  });
  world.run(&service, "/svc", GetParam());
  EXPECT_FALSE(ask("/svc", "bad").ok);
  EXPECT_TRUE(ask("/svc", "good").ok);
  world.end();
}

TEST_P(AnExecutorInEitherMode, AnswersWhatItNeverServedWithAnErrorWhenItIsShutDown) {
  ExecutorWorld world;
  ScriptedService service;
  ServiceExecutor& sut = world.build(&service, "/svc", GetParam());
  Answer answer{true, "", ""};
  std::thread asking([&] { answer = ask("/svc", "x"); });
  CommsChannel caller("/test/caller", nullptr);
  CommsChannelDataContainerMessage queued;
  queued.setChannel("/svc");
  queued.setRequestId(9);
  ASSERT_TRUE(caller.send(queued));

  sut.shutdown();
  sut.shutdown();  // may be repeated
  asking.join();

  EXPECT_FALSE(answer.ok);
  EXPECT_FALSE(caller.receiveReply(queued, 9));
  EXPECT_EQ(queued.getError(), "channel '/svc' was closed");
  EXPECT_EQ(ask("/svc", "later").error, "nobody serves channel '/svc'");
  world.end();
}

TEST_P(AnExecutorInEitherMode, WakesItsThreadsThatWaitOnWhateverChannelWhenItIsShutDown) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService slow([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&slow, "/slow", Mode::ST);
  std::string inside;
  ScriptedService service([&](const std::string&) {
    inside = ask("/slow", "x").error;
    return std::string("done");
  });
  ServiceExecutor& sut = world.run(&service, "/svc", GetParam());
  Answer answer{false, "", ""};
  std::thread asking([&] { answer = ask("/svc", "x"); });
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  sut.shutdown();
  asking.join();

  EXPECT_EQ(inside, "the service that waits for channel '/slow' was shut down");
  EXPECT_TRUE(answer.ok) << "a request that was under way is still answered";
  gate.open();
  world.end();
}

TEST_P(AnExecutorInEitherMode, WaitsForTheRequestsUnderWayWhenItIsDeleted) {
  ExecutorWorld world;
  zerva::Gate gate;
  std::atomic<bool> finished{false};
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    finished = true;
    return request;
  });
  ServiceExecutor& sut = world.run(&service, "/svc", GetParam());
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/svc", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  std::thread opening([&] { gate.open(); });

  world.remove(sut);

  EXPECT_TRUE(finished);
  opening.join();
  world.end();
}

TEST_P(AnExecutorInEitherMode, IsNamedAsTheOneThatWasShutDownLastAlsoWhenItIsGone) {
  {
    ExecutorWorld world;
    ScriptedService service;
    world.run(&service, "/svc", GetParam());
    world.end();
  }
  EXPECT_THAT(zerva::Waiting::lastShutdown(),
              testing::AllOf(HasSubstr("ScriptedService of service_executo"),
                             HasSubstr(" (interface 'Ifc', channel '/svc')")));
}

TEST_P(AnExecutorInEitherMode, ThatWasNeverStarted_CanBeShutDownAndDeleted) {
  ExecutorWorld world;
  ScriptedService service;
  ServiceExecutor& sut = world.build(&service, "/svc", GetParam());
  sut.shutdown();
  world.remove(sut);
  EXPECT_EQ(ask("/svc", "x").error, "nobody serves channel '/svc'");
  world.end();
}

TEST_P(AnExecutorInEitherMode, MayHaveNoServiceAsLongAsItIsNotStarted) {
  ExecutorWorld world;
  ServiceExecutor& sut = world.build(nullptr, "/svc", GetParam());
  world.remove(sut);
  EXPECT_EQ(ask("/svc", "x").error, "nobody serves channel '/svc'");
  world.end();
}

TEST_P(AnExecutorInEitherMode, FailsAWaitOfTheThreadThatHasYetToStartIt) {
  ExecutorWorld world;
  ScriptedService service;
  world.build(&service, "/svc", GetParam());
  // What a service does that calls itself in its init: nobody else will ever start it.
  EXPECT_EQ(ask("/svc", "x").error,
            "channel '/svc' answers only after the waiting thread has started it");
  world.end();
}

TEST_P(AnExecutorInEitherMode, AnswersTheThreadThatHasStartedItSinceItAsked) {
  ExecutorWorld world;
  ScriptedService service;
  ServiceExecutor& sut = world.build(&service, "/svc", GetParam());
  CommsChannel from("/test/caller", nullptr);
  CommsChannelDataContainerMessage message;
  message.setChannel("/svc");
  message.setData("x");
  message.setRequestId(1);
  EXPECT_TRUE(from.send(message));

  ExecutorWorld::start(sut);

  EXPECT_TRUE(from.receiveReply(message, 1)) << message.getError();
  EXPECT_EQ(message.getData(), "x");
  world.end();
}

TEST_P(AnExecutorInEitherMode, LosesNoRequestWhenItIsShutDownInTheMiddle) {
  for (int round = 0; round < 20; ++round) {
    ScriptedService service;
    ExecutorWorld world;
    ServiceExecutor& sut = world.run(&service, "/svc", GetParam());
    zerva::Barrier start(4);
    std::vector<std::thread> callers;
    for (int i = 0; i < 3; ++i) {
      callers.emplace_back([&] {
        start.arriveAndWait();
        while (ask("/svc", "x").ok) {
        }
      });
    }
    start.arriveAndWait();
    sut.shutdown();
    world.remove(sut);
    for (std::thread& caller : callers) {
      caller.join();  // each got an answer to each request
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, AnExecutorInEitherMode, testing::Values(Mode::ST, Mode::MT),
                         [](const auto& mode) { return mode.param == Mode::ST ? "ST" : "MT"; });

}  // namespace
