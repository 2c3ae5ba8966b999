#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "framework/CCInterceptorDispatcher.h"
#include "runtime/libClientUtils/ChannelState.h"
#include "tests/platform/BusyReceiver.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

/** Holds what is received back until the test lets it go. */
class HoldsReceived final : public CCInterceptor {
 public:
  explicit HoldsReceived(bool replies) : replies_(replies) {}

  void messageSent(const InterceptedMessage&) override {}
  void messageReceived(const InterceptedMessage& message) override {
    if (message.reply == replies_) {
      gate.wait();
      finished = true;
    }
  }

  zerva::Gate gate;
  std::atomic<bool> finished{false};

 private:
  const bool replies_;
};

/** Lets what is held go when it sees that the deleting has begun. */
void openWhen(HoldsReceived& held, const std::function<bool()>& deletingHasBegun) {
  EXPECT_TRUE(waitUntil(deletingHasBegun));
  held.gate.open();
}

TEST(AChannelThatIsDeleted, WaitsForARequestThatIsBeingHandedOver) {
  CCInterceptorDispatcher dispatcher;
  HoldsReceived held(false);
  dispatcher.addInterceptor(&held);
  auto sut = std::make_unique<CommsChannel>("/svc", &dispatcher);
  sut->state().mailbox->serveWith(std::make_shared<zerva::BusyReceiver>(nullptr));
  CommsChannel caller("/test/caller", nullptr);
  std::thread sending([&] { caller.sendTo("/svc", "x"); });
  ASSERT_TRUE(waitUntil([&] { return held.gate.waiting() == 1; }));
  std::thread opening([&] { openWhen(held, [&] { return !caller.isServed("/svc"); }); });

  sut.reset();

  EXPECT_TRUE(held.finished);
  opening.join();
  sending.join();
}

TEST(AChannelThatIsDeleted, WaitsForAReplyThatIsBeingHandedOver) {
  CCInterceptorDispatcher dispatcher;
  HoldsReceived held(true);
  dispatcher.addInterceptor(&held);
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  auto caller = std::make_unique<CommsChannel>("/test/caller", &dispatcher);
  CommsChannelDataContainerMessage message;
  message.setChannel("/svc");
  message.setRequestId(1);
  ASSERT_TRUE(caller->send(message));
  ASSERT_TRUE(waitUntil([&] { return held.gate.waiting() == 1; }));
  // Its inside tells that it was closed, while the channel itself must not be touched any more.
  const auto inside = caller->state().mailbox;
  std::thread opening([&] {
    openWhen(held, [&] {
      return !inside->send(zerva::sharedName("/nobody"), {}, nullptr, 0).starts_with("nobody");
    });
  });

  caller.reset();

  EXPECT_TRUE(held.finished);
  opening.join();
  world.end();
}

TEST(AnExecutorThatIsDeleted, AnswersARequestThatReachesItTooLate) {
  CCInterceptorDispatcher dispatcher;
  HoldsReceived held(false);
  dispatcher.addInterceptor(&held);
  ScriptedService service;
  ExecutorWorld world;
  auto executor =
      std::make_unique<ServiceExecutor>(&service, new CommsChannel("/svc", &dispatcher), "Ifc",
                                        &world.context, &world.pool, nullptr, false);
  ExecutorWorld::start(*executor);
  Answer answer{true, "", ""};
  std::thread asking([&] { answer = ask("/svc", "x"); });
  ASSERT_TRUE(waitUntil([&] { return held.gate.waiting() == 1; }));
  executor->shutdown();
  held.gate.open();
  executor.reset();
  asking.join();
  EXPECT_FALSE(answer.ok);
  EXPECT_EQ(answer.error, "nobody serves channel '/svc'");
}

/** Counts how often it is asked whether anybody is to be told. */
class AskedDispatcher final : public CCInterceptorDispatcher {
 public:
  bool hasInterceptors() const override {
    ++asked;
    return false;
  }
  mutable int asked = 0;
};

// The dispatcher has to live as long as the channel and no longer, and a reply may come later.
TEST(AReplyThatComesTooLate, AsksNothingOfTheDispatcherOfAChannelThatIsGone) {
  AskedDispatcher dispatcher;
  auto caller = std::make_unique<CommsChannel>("/test/caller", &dispatcher);
  const auto sut = caller->state().mailbox;
  caller.reset();
  const int before = dispatcher.asked;

  sut->receiveReply(1, 1, nullptr, "too late");

  EXPECT_EQ(dispatcher.asked, before);
}

}  // namespace
