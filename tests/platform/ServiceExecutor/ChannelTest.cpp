#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "tests/platform/ServiceExecutor/Receivers.h"
#include "tests/platform/ServiceExecutor/ReplyTimeoutIs.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;
using zerva::concurrently;
using zerva::OtherProcess;
using zerva::RefusingReceiver;
using zerva::ReplyTimeoutIs;
using zerva::waitUntil;

TEST(ARequest, ToAChannelThatCloses_ReachesTheOtherProcessThatServesTheNameWithTheName) {
  auto& directory = zerva::ChannelDirectory::instance();
  std::string asked;
  directory.setRemoteChannels(std::make_shared<OtherProcess>(asked));
  const auto leaving = std::make_shared<zerva::Mailbox>("/moved", nullptr);
  directory.add(leaving);
  leaving->serveWith(std::make_shared<RefusingReceiver>([&] { leaving->close(); }));

  EXPECT_EQ(ask("/moved", "x").error, "it is out");
  EXPECT_EQ(asked, "/moved");

  directory.remove(*leaving);
  leaving->waitForDeliveries();
  directory.setRemoteChannels(nullptr);
}

TEST(ARequest, ToANameThatNobodyServes_FailsAtOnceAndKeepsItsData) {
  CommsChannel sut("/test/caller", nullptr);
  CommsChannelDataContainerMessage message;
  message.setChannel("/nobody");
  message.setData("the request");
  message.setRequestId(7);

  EXPECT_FALSE(sut.send(message));
  EXPECT_FALSE(sut.receiveReply(message, 7));

  EXPECT_EQ(message.getData(), "the request");
  EXPECT_EQ(message.getError(), "nobody serves channel '/nobody'");
}

TEST(ARequest, ToAChannelThatIsOpenButNotServed_FailsAtOnce) {
  const CommsChannel open("/open", nullptr);
  EXPECT_EQ(ask("/open", "x").error, "nobody serves channel '/open'");
}

TEST(ARequest, GetsTheReplyOfTheService) {
  ExecutorWorld world;
  ScriptedService service([](const std::string& request) { return "reply to " + request; });
  world.run(&service, "/svc", Mode::ST);

  const Answer answer = ask("/svc", "it");

  EXPECT_TRUE(answer.ok);
  EXPECT_EQ(answer.data, "reply to it");
  EXPECT_EQ(answer.error, "");
  world.end();
}

TEST(ARequest, CarriesAnyBytesBothWays) {
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/svc", Mode::ST);
  const std::string bytes("a\0b\n\xff", 5);
  EXPECT_EQ(ask("/svc", bytes).data, bytes);
  world.end();
}

TEST(ARequest, WhoseIdIsOutstandingAlready_IsRefusedAndDoesNotTouchTheFirst) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&service, "/svc", Mode::MT);
  CommsChannel sut("/test/caller", nullptr);
  CommsChannelDataContainerMessage first;
  first.setChannel("/svc");
  first.setData("first");
  first.setRequestId(1);
  CommsChannelDataContainerMessage second;
  second.setChannel("/svc");
  second.setData("second");
  second.setRequestId(1);

  EXPECT_TRUE(sut.send(first));
  EXPECT_FALSE(sut.send(second));
  EXPECT_THAT(second.getError(), HasSubstr("outstanding already"));
  gate.open();
  EXPECT_TRUE(sut.receiveReply(first, 1));
  EXPECT_EQ(first.getData(), "first");
  world.end();
}

TEST(AReply, IsAwaitedUnderTheIdAsAnUnsigned32BitNumber) {
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel sut("/test/caller", nullptr);
  CommsChannelDataContainerMessage message;
  message.setChannel("/svc");
  message.setData("last id");
  message.setRequestId(static_cast<long>(0xffffffffUL));
  ASSERT_TRUE(sut.send(message));
  EXPECT_TRUE(sut.receiveReply(message, -1));
  world.end();
}

TEST(AReply, ToARequestThatWasNeverSent_IsNotAwaited) {
  CommsChannel sut("/test/caller", nullptr);
  CommsChannelDataContainerMessage message;
  EXPECT_FALSE(sut.receiveReply(message, 5));
  EXPECT_THAT(message.getError(), HasSubstr("not outstanding"));
}

TEST(AReply, FromSomebodyWhoWasNotAsked_IsNotHeard) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service([&](const std::string&) {
    gate.wait();
    return std::string("right");
  });
  world.run(&service, "/svc", Mode::ST);
  const auto sut = std::make_shared<zerva::Mailbox>("/test/caller", nullptr);
  ASSERT_EQ(sut->send(zerva::sharedName("/svc"), {}, nullptr, 3), "");

  sut->receiveReply(3, 0, std::make_shared<const std::string>("forged"), "");
  gate.open();

  EXPECT_EQ(*sut->awaitReply(3).reply, "right");
  world.end();
}

TEST(AReply, ThatDoesNotComeInTime_IsGivenUp) {
  const ReplyTimeoutIs shortTime(std::chrono::milliseconds(30));
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&service, "/svc", Mode::ST);

  const Answer answer = ask("/svc", "request");

  EXPECT_FALSE(answer.ok);
  EXPECT_EQ(answer.data, "request");
  EXPECT_EQ(answer.error, "channel '/svc' did not answer in time");
  gate.open();
  world.end();
}

TEST(AReply, ThatComesTooLate_IsNotTakenForThatToTheNextRequestWithTheId) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return "reply to " + request;
  });
  world.run(&service, "/svc", Mode::ST);
  CommsChannel sut("/test/caller", nullptr);
  {
    const ReplyTimeoutIs shortTime(std::chrono::milliseconds(30));
    EXPECT_FALSE(ask(sut, "/svc", "first", 1).ok);
  }

  CommsChannelDataContainerMessage second;
  second.setChannel("/svc");
  second.setData("second");
  second.setRequestId(1);
  ASSERT_TRUE(sut.send(second));
  gate.open();

  EXPECT_TRUE(sut.receiveReply(second, 1));
  EXPECT_EQ(second.getData(), "reply to second");
  world.end();
}

TEST(AChannel, LetsManyThreadsWaitEachForItsOwnReply) {
  ExecutorWorld world(16);
  zerva::Barrier allAreThere(16);
  ScriptedService service([&](const std::string& request) {
    allAreThere.arriveAndWait();
    return request + "!";
  });
  world.run(&service, "/svc", Mode::MT);
  CommsChannel sut("/test/caller", nullptr);
  concurrently(16, [&](std::size_t thread) {
    const std::string text = std::to_string(thread);
    EXPECT_EQ(ask(sut, "/svc", text, static_cast<long>(thread) + 1).data, text + "!");
  });
  world.end();
}

TEST(AChannel, KeepsTheOrderOfOneSenderWhicheverChannelItSendsFrom) {
  ExecutorWorld world;
  Journal journal;
  ScriptedService service([&](const std::string& request) {
    journal.add(request);
    return request;
  });
  world.run(&service, "/svc", Mode::ST);
  CommsChannel one("/test/one", nullptr);
  CommsChannel two("/test/two", nullptr);
  std::vector<std::string> expected;
  for (int i = 0; i < 500; ++i) {
    expected.push_back(std::to_string(i));
    EXPECT_TRUE((i % 2 == 0 ? one : two).sendTo("/svc", expected.back()));
  }
  ask("/svc", "end");
  expected.emplace_back("end");
  EXPECT_EQ(journal.entries(), expected);
  world.end();
}

TEST(TwoChannelsOfOneName, GiveTheRequestsToTheOlderAsLongAsItIsServed) {
  ExecutorWorld world;
  ScriptedService older([](const std::string&) { return std::string("older"); });
  ScriptedService younger([](const std::string&) { return std::string("younger"); });
  ServiceExecutor& first = world.run(&older, "/svc", Mode::ST);
  world.run(&younger, "/svc", Mode::ST);

  EXPECT_EQ(ask("/svc", "").data, "older");
  first.shutdown();
  EXPECT_EQ(ask("/svc", "").data, "younger");
  world.end();
}

TEST(TwoChannelsOfOneName, GetEachItsOwnReplies) {
  ExecutorWorld world(8);
  zerva::Barrier bothAsked(2);
  ScriptedService service([&](const std::string& request) {
    bothAsked.arriveAndWait();
    return request;
  });
  world.run(&service, "/svc", Mode::MT);
  concurrently(2, [](std::size_t thread) {
    CommsChannel sut("/test/same name", nullptr);
    const std::string text = std::to_string(thread);
    EXPECT_EQ(ask(sut, "/svc", text, 1).data, text);
  });
  world.end();
}

TEST(AChannel, ThatIsClosed_WakesWhoWaitsOnIt) {
  ExecutorWorld world;
  zerva::Gate gate;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&service, "/svc", Mode::ST);
  // Its inside, which the waiting thread keeps while the channel itself is deleted.
  const auto sut = std::make_shared<zerva::Mailbox>("/test/caller", nullptr);
  zerva::Mailbox::Outcome outcome;
  std::thread waiting([&] {
    ASSERT_EQ(sut->send(zerva::sharedName("/svc"), {}, nullptr, 1), "");
    outcome = sut->awaitReply(1);
  });
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  sut->close();
  waiting.join();

  EXPECT_EQ(outcome.reply, nullptr);
  EXPECT_EQ(outcome.error, "channel '/test/caller' was closed");
  gate.open();
  world.end();
}

TEST(AChannel, KnowsWhetherANameIsServedWithoutMakingALazyService) {
  ExecutorWorld world;
  bool made = false;
  world.context.make = [&] {
    made = true;
    return nullptr;
  };
  CommsChannel sut("/test/caller", nullptr);
  EXPECT_FALSE(sut.isServed("/lazy"));
  ServiceExecutor& executor = world.runLazy("/lazy", Mode::ST);
  EXPECT_TRUE(sut.isServed("/lazy"));
  executor.shutdown();
  EXPECT_FALSE(sut.isServed("/lazy"));
  EXPECT_FALSE(made);
  world.end();
}

TEST(AMessageWithoutId, IsServedAndAnswersNobody) {
  ExecutorWorld world;
  zerva::Gate served;
  ScriptedService service([&](const std::string& request) {
    EXPECT_EQ(request, "news");
    served.open();
    return std::string("ignored");
  });
  world.run(&service, "/svc", Mode::ST);
  CommsChannel sut("/test/caller", nullptr);
  EXPECT_TRUE(sut.sendTo("/svc", "news"));
  served.wait();
  EXPECT_FALSE(sut.sendTo("/nobody", "news"));
  world.end();
}

TEST(AMessageWithoutId, IsServedAsItWasSentWhateverBecomesOfItsMemory) {
  ExecutorWorld world;
  zerva::Gate gate;
  Journal journal;
  ScriptedService service([&](const std::string& request) {
    gate.wait();
    journal.add(request);
    return request;
  });
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  std::string text = "one";
  caller.sendTo("/svc", text);
  text = "two";
  caller.sendTo("/svc", text);
  text = "and nothing else";

  gate.open();

  EXPECT_TRUE(waitUntil([&] { return journal.entries().size() == 2; }));
  EXPECT_THAT(journal.entries(), testing::ElementsAre("one", "two"));
  world.end();
}

TEST(AMailbox, ForgetsRequestsWhoseRepliesNobodyEverAskedFor) {
  const ReplyTimeoutIs shortTime(std::chrono::milliseconds(1));
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/svc", Mode::ST);
  const auto sut = std::make_shared<zerva::Mailbox>("/test/caller", nullptr);
  for (std::uint32_t id = 1; id <= 64; ++id) {
    ASSERT_EQ(sut->send(zerva::sharedName("/svc"), {}, nullptr, id), "");
  }
  // The oldest id is free again once it is too old to be asked for.
  EXPECT_TRUE(
      waitUntil([&] { return sut->send(zerva::sharedName("/svc"), {}, nullptr, 1).empty(); }));
  world.end();
}

TEST(AMailbox, ThatIsClosed_SaysSoWhenSomethingIsSentOrAwaited) {
  const auto sut = std::make_shared<zerva::Mailbox>("/closed", nullptr);
  sut->close();
  EXPECT_EQ(sut->send(zerva::sharedName("/nobody"), {}, nullptr, 1), "channel '/closed' is closed");
  EXPECT_EQ(sut->send(zerva::sharedName("/nobody"), {}, nullptr, 0), "channel '/closed' is closed");
  EXPECT_EQ(sut->awaitReply(1).error, "channel '/closed' is closed");
}

TEST(AMailbox, WaitsForDeliveriesUnderWayAndThenLetsItsReceiverGo) {
  zerva::Gate gate;
  const auto sut = std::make_shared<zerva::Mailbox>("/svc", nullptr);
  auto receiver = std::make_shared<RefusingReceiver>([&] { gate.wait(); });
  const std::weak_ptr<RefusingReceiver> observed = receiver;
  sut->serveWith(std::move(receiver));
  std::thread delivering([&] {
    zerva::Envelope envelope;
    EXPECT_FALSE(sut->deliver(envelope));
  });
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));

  sut->close();
  zerva::Envelope late;
  EXPECT_FALSE(sut->deliver(late));
  std::atomic<bool> over{false};
  std::thread ending([&] {
    sut->waitForDeliveries();
    over = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(over);
  EXPECT_FALSE(observed.expired());

  gate.open();
  delivering.join();
  ending.join();
  EXPECT_TRUE(observed.expired());
}

}  // namespace
