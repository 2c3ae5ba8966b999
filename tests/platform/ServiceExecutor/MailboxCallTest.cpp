// A request that is sent and waited for in one, as proxies do.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <thread>

#include "framework/CCInterceptor.h"
#include "framework/CCInterceptorDispatcher.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "tests/platform/ServiceExecutor/Receivers.h"
#include "tests/platform/ServiceExecutor/ReplyTimeoutIs.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::HasSubstr;

class ACallOfAMailbox : public testing::Test {
 protected:
  ~ACallOfAMailbox() override {
    gate.open();
    world.end();
  }

  void run() { world.run(&service, "/svc", Mode::MT); }

  Mailbox::Outcome call(std::uint32_t id, const std::string& data = "it") {
    return sut->call(sharedName("/svc"), nullptr, std::make_shared<const std::string>(data), id);
  }

  Gate gate;
  ScriptedService service{[this](const std::string& request) {
    if (request == "wait") gate.wait();
    return "reply to " + request;
  }};
  ExecutorWorld world;
  CCInterceptorDispatcher dispatcher;
  std::shared_ptr<Mailbox> sut = std::make_shared<Mailbox>("/test/caller", &dispatcher);
};

TEST_F(ACallOfAMailbox, GetsTheReply) {
  run();
  for (std::uint32_t id = 1; id <= 3; ++id) {
    const Mailbox::Outcome outcome = call(id, std::to_string(id));
    ASSERT_NE(outcome.reply, nullptr) << outcome.error;
    EXPECT_EQ(*outcome.reply, "reply to " + std::to_string(id));
  }
}

TEST_F(ACallOfAMailbox, OfANameThatNobodyServes_SaysSo) {
  EXPECT_EQ(call(1).error, "nobody serves channel '/svc'");
  // Nothing of it is left.
  run();
  EXPECT_NE(call(1).reply, nullptr);
}

TEST_F(ACallOfAMailbox, WhoseIdIsOutstanding_IsRefusedAndDoesNotTouchTheFirst) {
  run();
  Mailbox::Outcome first;
  std::thread other([&] { first = call(1, "wait"); });
  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  EXPECT_THAT(call(1).error, HasSubstr("outstanding already"));
  gate.open();
  other.join();
  ASSERT_NE(first.reply, nullptr) << first.error;
  EXPECT_EQ(*first.reply, "reply to wait");
}

TEST_F(ACallOfAMailbox, BesideOthers_GetsItsOwnReply) {
  run();
  Mailbox::Outcome slow;
  std::thread other([&] { slow = call(1, "wait"); });
  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  for (std::uint32_t id = 2; id <= 4; ++id) {
    EXPECT_EQ(textOf(call(id, std::to_string(id)).reply), "reply to " + std::to_string(id));
  }
  gate.open();
  other.join();
  EXPECT_EQ(textOf(slow.reply), "reply to wait");
}

TEST_F(ACallOfAMailbox, ThatIsNotAnsweredInTime_IsGivenUpAndItsIdIsFree) {
  run();
  {
    const ReplyTimeoutIs shortTime(std::chrono::milliseconds(30));
    EXPECT_EQ(call(1, "wait").error, "channel '/svc' did not answer in time");
  }
  Mailbox::Outcome second;
  std::thread other([&] { second = call(1, "wait"); });
  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == 2; }));
  gate.open();
  other.join();
  EXPECT_NE(second.reply, nullptr) << second.error;
}

TEST_F(ACallOfAMailbox, ThatIsClosedMeanwhile_EndsWithThat) {
  run();
  Mailbox::Outcome outcome;
  std::thread waiting([&] { outcome = call(1, "wait"); });
  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  sut->close();
  waiting.join();
  EXPECT_EQ(outcome.reply, nullptr);
  EXPECT_EQ(outcome.error, "channel '/test/caller' was closed");
  EXPECT_EQ(call(2).error, "channel '/test/caller' is closed");
}

/** Does something when the channel sends. */
class Doing final : public CCInterceptor {
 public:
  void messageSent(const InterceptedMessage& /*message*/) override { onSent(); }
  void messageReceived(const InterceptedMessage& /*message*/) override {}
  std::function<void()> onSent = [] {};
};

TEST_F(ACallOfAMailbox, ThatIsClosedBeforeItIsDelivered_EndsWithThat) {
  run();
  Doing closing;
  closing.onSent = [this] { sut->close(); };
  dispatcher.addInterceptor(&closing);
  EXPECT_EQ(call(1).error, "channel '/test/caller' was closed");
}

TEST_F(ACallOfAMailbox, WhoseInterceptorThrows_LeavesNothing) {
  run();
  Doing throwing;
  throwing.onSent = [] { throw std::bad_alloc(); };
  dispatcher.addInterceptor(&throwing);
  EXPECT_THROW(call(1), std::bad_alloc);
  throwing.onSent = [] {};
  EXPECT_EQ(textOf(call(1).reply), "reply to it");
}

TEST_F(ACallOfAMailbox, OfAChannelThatCloses_ReachesTheOtherProcessThatServesTheName) {
  auto& directory = ChannelDirectory::instance();
  std::string asked;
  directory.setRemoteChannels(std::make_shared<OtherProcess>(asked));
  const auto leaving = std::make_shared<Mailbox>("/svc", nullptr);
  directory.add(leaving);
  leaving->serveWith(std::make_shared<RefusingReceiver>([&] { leaving->close(); }));

  EXPECT_EQ(call(1).error, "it is out");
  EXPECT_EQ(asked, "/svc");

  directory.remove(*leaving);
  leaving->waitForDeliveries();
  directory.setRemoteChannels(nullptr);
}

// The first one was given up while it was delivered, and its id used again.
TEST_F(ACallOfAMailbox, IsNotTakenForAnEarlierRequestWithItsIdThatNobodyTakes) {
  run();
  const auto leaving = std::make_shared<Mailbox>("/leaving", nullptr);
  ChannelDirectory::instance().add(leaving);
  leaving->serveWith(std::make_shared<RefusingReceiver>([&] {
    EXPECT_THAT(sut->awaitReply(1).error, HasSubstr("did not answer in time"));
    const ReplyTimeoutIs longTime(std::chrono::hours(1));
    EXPECT_EQ(
        sut->send(sharedName("/svc"), nullptr, std::make_shared<const std::string>("wait"), 1), "");
    leaving->close();
  }));
  {
    const ReplyTimeoutIs shortTime(std::chrono::milliseconds(1));
    sut->send(sharedName("/leaving"), nullptr, nullptr, 1);
  }
  gate.open();
  const Mailbox::Outcome outcome = sut->awaitReply(1);
  EXPECT_EQ(textOf(outcome.reply), "reply to wait") << outcome.error;

  ChannelDirectory::instance().remove(*leaving);
  leaving->waitForDeliveries();
}

}  // namespace
}  // namespace zerva
