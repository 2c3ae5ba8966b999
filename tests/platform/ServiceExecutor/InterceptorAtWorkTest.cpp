#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <new>
#include <string>
#include <thread>

#include "framework/CCInterceptorDispatcher.h"
#include "tests/platform/ClientUtils/ThreadReports.h"
#include "tests/platform/ServiceExecutor/ReplyTimeoutIs.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zerva::waitUntil;

/** Notes what it sees, and then does what the test wants. */
class Messages final : public CCInterceptor {
 public:
  void messageSent(const InterceptedMessage& message) override { note("sent", message); }
  void messageReceived(const InterceptedMessage& message) override { note("received", message); }

  std::function<void()> then = [] {};
  Journal journal;

 private:
  void note(const std::string& what, const InterceptedMessage& message) {
    journal.add(what + (message.reply ? " reply to " : " message to ") + message.to + " id " +
                std::to_string(message.requestId) + " size " + std::to_string(message.size));
    then();
  }
};

class Invocations final : public InvokeInterceptor {
 public:
  void invoked(const Invocation& invocation) override {
    journal.add(invocation.caller);
    then();
  }

  std::function<void()> then = [] {};
  Journal journal;
};

TEST(AnInterceptor, SeesMessagesThatNobodyAnswersAtBothEnds) {
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  dispatcher.addInterceptor(&sut);
  ScriptedService service;
  ExecutorWorld world;
  ServiceExecutor executor(&service, new CommsChannel("/svc", &dispatcher), "Ifc", &world.context,
                           &world.pool, nullptr, false);
  ExecutorWorld::start(executor);
  CommsChannel caller("/test/caller", &dispatcher);

  ASSERT_TRUE(caller.sendTo("/svc", "four"));
  CommsChannelDataContainerMessage message;
  message.setChannel("/svc");
  message.setData("12345");
  ASSERT_TRUE(caller.send(message));
  ask("/svc", "ends what is under way");

  auto seen = sut.journal.entries();
  ASSERT_GE(seen.size(), 4U);
  seen.resize(4);
  EXPECT_THAT(
      seen,
      ElementsAre("sent message to /svc id 0 size 4", "received message to /svc id 0 size 4",
                  "sent message to /svc id 0 size 5", "received message to /svc id 0 size 5"));
}

TEST(AnInterceptor, SeesAMessageThatNobodyServesAsSentOnly) {
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  dispatcher.addInterceptor(&sut);
  CommsChannel caller("/test/caller", &dispatcher);
  EXPECT_FALSE(caller.sendTo("/nobody", "x"));
  EXPECT_THAT(sut.journal.entries(), ElementsAre("sent message to /nobody id 0 size 1"));
}

// A caller who looked when its reply was there already was once not kept waiting for this.
TEST(AnInterceptor, HasSeenAReplyBeforeItsCallerGoesOn) {
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  dispatcher.addInterceptor(&sut);
  zerva::Gate gate;
  std::atomic<bool> seen{false};
  sut.then = [&] {
    if (sut.journal.entries().size() == 2) {
      gate.wait();
      seen = true;
    }
  };
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", &dispatcher);
  CommsChannelDataContainerMessage message;
  message.setChannel("/svc");
  message.setRequestId(1);
  ASSERT_TRUE(caller.send(message));
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  std::thread opening([&] { gate.open(); });

  EXPECT_TRUE(caller.receiveReply(message, 1));

  EXPECT_TRUE(seen);
  opening.join();
  world.end();
}

// There was no memory for what an interceptor is told of a reply; the reply was lost with it, and
// its caller waited until the time was over.
TEST(AnInterceptor, ThatThrows_DoesNotKeepAReplyFromItsCaller) {
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  dispatcher.addInterceptor(&sut);
  sut.then = [&] {
    if (sut.journal.entries().size() == 2) throw std::bad_alloc();
  };
  ScriptedService service([](const std::string&) { return std::string("four"); });
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", &dispatcher);

  const Answer answer = ask(caller, "/svc", "123");

  EXPECT_EQ(answer.data, "four") << answer.error;
  world.end();
}

// The request is on its way while the interceptor sees it, and another thread may wait for it then.
TEST(AnInterceptor, OfARequestThatNobodyTakes_DoesNotKeepTheThreadThatWaitsForIt) {
  const zerva::ReplyTimeoutIs forGood(std::chrono::hours(1));
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  dispatcher.addInterceptor(&sut);
  CommsChannel caller("/test/caller", &dispatcher);
  std::atomic<int> waiting{0};
  CommsChannelDataContainerMessage reply;
  std::thread waiter;
  sut.then = [&] {
    waiter = std::thread([&] {
      waiting = gettid();
      EXPECT_FALSE(caller.receiveReply(reply, 7));
    });
    ASSERT_TRUE(waitUntil([&] { return waiting != 0 && zerva::threadState(waiting) == 'S'; }));
  };
  CommsChannelDataContainerMessage message;
  message.setChannel("/nobody");
  message.setRequestId(7);

  EXPECT_FALSE(caller.send(message));

  waiter.join();
  EXPECT_THAT(reply.getError(), HasSubstr("'/nobody'"));
  dispatcher.removeInterceptor(&sut);
}

TEST(AnInterceptor, OfMessages_MayRemoveItselfWhileItIsCalled) {
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  Messages next;
  dispatcher.addInterceptor(&sut);
  dispatcher.addInterceptor(&next);
  sut.then = [&] { dispatcher.removeInterceptor(&sut); };
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", &dispatcher);

  EXPECT_TRUE(ask(caller, "/svc", "x").ok);
  EXPECT_TRUE(ask(caller, "/svc", "x").ok);

  EXPECT_EQ(sut.journal.entries().size(), 1U);
  EXPECT_EQ(next.journal.entries().size(), 4U) << "the one behind it misses nothing";
  world.end();
}

TEST(AnInterceptor, OfMessages_MayAddAnotherWhileItIsCalled) {
  CCInterceptorDispatcher dispatcher;
  Messages sut;
  Messages added;
  dispatcher.addInterceptor(&sut);
  sut.then = [&] {
    if (sut.journal.entries().size() == 1) {
      dispatcher.addInterceptor(&added);
    }
  };
  CommsChannel caller("/test/caller", &dispatcher);
  caller.sendTo("/nobody", "1");
  EXPECT_THAT(added.journal.entries(), ElementsAre());
  caller.sendTo("/nobody", "22");
  EXPECT_THAT(added.journal.entries(), ElementsAre("sent message to /nobody id 0 size 2"));
}

TEST(AnInterceptor, OfMessages_MayBeAddedAndRemovedWhileOthersAreTold) {
  CCInterceptorDispatcher dispatcher;
  std::atomic<unsigned> told{0};
  Messages first;
  first.then = [&] { ++told; };
  dispatcher.addInterceptor(&first);
  std::atomic<bool> over{false};
  std::thread sending([&] {
    CommsChannel caller("/test/caller", &dispatcher);
    while (!over) caller.sendTo("/nobody", "x");
  });
  Messages others;
  ASSERT_TRUE(waitUntil([&] { return told > 0; }));
  for (int i = 0; i < 300; ++i) {
    dispatcher.addInterceptor(&others);
    dispatcher.removeInterceptor(&others);
  }
  over = true;
  sending.join();

  const unsigned before = told;
  CommsChannel("/test/caller", &dispatcher).sendTo("/nobody", "x");
  EXPECT_EQ(told, before + 1);
  EXPECT_TRUE(dispatcher.hasInterceptors());
}

TEST(AnInterceptor, OfInvocations_SeesMessagesThatNobodyAnswers) {
  InvokeInterceptorDispatcher dispatcher;
  Invocations sut;
  dispatcher.addInterceptor(&sut);
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST, &dispatcher);
  CommsChannel caller("/one way", nullptr);
  caller.sendTo("/svc", "x");
  ask("/svc", "x");
  EXPECT_THAT(sut.journal.entries(), ElementsAre("/one way", "/test/caller"));
  world.end();
}

TEST(AnInterceptor, OfInvocations_MayRemoveItselfWhileItIsCalled) {
  InvokeInterceptorDispatcher dispatcher;
  Invocations sut;
  Invocations next;
  dispatcher.addInterceptor(&sut);
  dispatcher.addInterceptor(&next);
  sut.then = [&] { dispatcher.removeInterceptor(&sut); };
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::MT, &dispatcher);
  EXPECT_TRUE(ask("/svc", "x").ok);
  EXPECT_TRUE(ask("/svc", "x").ok);
  EXPECT_EQ(sut.journal.entries().size(), 1U);
  EXPECT_EQ(next.journal.entries().size(), 2U);
  world.end();
}

}  // namespace
