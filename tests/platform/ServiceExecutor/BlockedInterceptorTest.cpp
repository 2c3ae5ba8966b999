#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

#include "framework/CCInterceptorDispatcher.h"
#include "runtime/libServiceExecutor/Drain.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

constexpr unsigned long kHeldId = 7;

/** Blocks on the request with one id, where the test wants it, until it is let go. */
class BlocksOn final : public CCInterceptor {
 public:
  enum class Place { Request, SentRequest, Reply, SentReply };

  explicit BlocksOn(Place place) : place_(place) {}

  void messageSent(const InterceptedMessage& message) override {
    block(message, message.reply ? Place::SentReply : Place::SentRequest);
  }
  void messageReceived(const InterceptedMessage& message) override {
    block(message, message.reply ? Place::Reply : Place::Request);
  }

  zerva::Gate gate;

 private:
  void block(const InterceptedMessage& message, Place place) {
    if (place == place_ && message.requestId == kHeldId) {
      gate.wait();
    }
  }

  const Place place_;
};

/** One request is held in an interceptor; everybody else goes on. */
class AnInterceptorThatBlocks : public testing::TestWithParam<BlocksOn::Place> {
 protected:
  AnInterceptorThatBlocks() { dispatcher.addInterceptor(&blocking); }

  BlocksOn blocking{GetParam()};
  CCInterceptorDispatcher dispatcher;
  ScriptedService service;
  ExecutorWorld world;
  std::unique_ptr<ServiceExecutor> executor =
      std::make_unique<ServiceExecutor>(&service, new CommsChannel("/svc", &dispatcher), "Ifc",
                                        &world.context, &world.pool, nullptr, true);
  CommsChannel caller{"/test/caller", &dispatcher};
};

TEST_P(AnInterceptorThatBlocks, KeepsNobodyElseFromTheChannelsAndTheExecutor) {
  ExecutorWorld::start(*executor);
  Answer held{false, "", ""};
  std::thread asking([&] { held = ask(caller, "/svc", "held", kHeldId); });
  ASSERT_TRUE(waitUntil([&] { return blocking.gate.waiting() == 1; }));

  EXPECT_TRUE(ask(caller, "/svc", "other", kHeldId + 1).ok);
  EXPECT_TRUE(caller.sendTo("/svc", "one way"));
  EXPECT_TRUE(caller.isServed("/svc"));
  BlocksOn another(GetParam());
  dispatcher.addInterceptor(&another);
  dispatcher.removeInterceptor(&another);
  executor->initService();

  blocking.gate.open();
  asking.join();
  EXPECT_TRUE(held.ok) << held.error;
}

TEST_P(AnInterceptorThatBlocks, DoesNotKeepAShutdownWaiting) {
  ExecutorWorld::start(*executor);
  std::thread asking([&] { ask(caller, "/svc", "held", kHeldId); });
  ASSERT_TRUE(waitUntil([&] { return blocking.gate.waiting() == 1; }));

  executor->shutdown();
  EXPECT_FALSE(caller.isServed("/svc"));
  EXPECT_FALSE(ask(caller, "/svc", "late", kHeldId + 1).ok);
  zerva::executorsUnderWay();

  blocking.gate.open();
  asking.join();
}

std::string nameOf(const testing::TestParamInfo<BlocksOn::Place>& info) {
  switch (info.param) {
    case BlocksOn::Place::Request:
      return "OnARequestThatArrives";
    case BlocksOn::Place::SentRequest:
      return "OnARequestThatIsSent";
    case BlocksOn::Place::Reply:
      return "OnAReplyThatArrives";
    case BlocksOn::Place::SentReply:
      return "OnAReplyThatIsSent";
  }
  return "";
}

INSTANTIATE_TEST_SUITE_P(Places, AnInterceptorThatBlocks,
                         testing::Values(BlocksOn::Place::SentRequest, BlocksOn::Place::Request,
                                         BlocksOn::Place::SentReply, BlocksOn::Place::Reply),
                         nameOf);

/** Blocks on the invocations of one caller. */
class BlocksOnCaller final : public InvokeInterceptor {
 public:
  void invoked(const Invocation& invocation) override {
    if (invocation.caller == "/held") {
      gate.wait();
    }
  }

  zerva::Gate gate;
};

TEST(AnInterceptorOfInvocationsThatBlocks, KeepsNobodyElseFromTheExecutor) {
  BlocksOnCaller blocking;
  InvokeInterceptorDispatcher dispatcher;
  dispatcher.addInterceptor(&blocking);
  ScriptedService service;
  ExecutorWorld world;
  ServiceExecutor& executor = world.run(&service, "/svc", Mode::MT, &dispatcher);
  CommsChannel held("/held", nullptr);
  ASSERT_TRUE(held.sendTo("/svc", "x"));
  ASSERT_TRUE(waitUntil([&] { return blocking.gate.waiting() == 1; }));

  EXPECT_TRUE(ask("/svc", "other").ok);
  BlocksOnCaller another;
  dispatcher.addInterceptor(&another);
  dispatcher.removeInterceptor(&another);
  EXPECT_EQ(zerva::executorsUnderWay().size(), 1U);
  executor.shutdown();
  EXPECT_FALSE(ask("/svc", "late").ok);

  blocking.gate.open();
  world.end();
}

}  // namespace
