#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "runtime/libClientUtils/MessageState.h"
#include "runtime/libServiceExecutor/Drain.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

/** Something that an executor calls blocks for one request; everybody else goes on. */
class AnExecutorWhoseCalleeBlocks : public testing::Test {
 protected:
  void expectThatOthersAreServed(ServiceExecutor& executor, const std::string& channel) {
    EXPECT_TRUE(ask(channel, "other").ok);
    EXPECT_EQ(zerva::executorsUnderWay().size(), 1U);
    executor.initService();
    executor.shutdown();
    EXPECT_FALSE(ask(channel, "late").ok);
  }

  /** Makes a call that the context is asked for; nobody waits for it. */
  void call(const std::string& channel) {
    CommsChannelDataContainerMessage message;
    message.setChannel(channel);
    message.state().callee =
        std::make_shared<const zerva::CalledIn>(zerva::CalledIn{"CalledIfc", "protocol"});
    ASSERT_TRUE(caller.send(message));
  }

  zerva::Gate gate;
  ScriptedService service;
  CommsChannel caller{"/test/caller", nullptr};
  ExecutorWorld world;
};

TEST_F(AnExecutorWhoseCalleeBlocks, InFindInvoker_ServesOthers) {
  world.context.invoker = [&](const std::string&, const std::string&) {
    gate.wait();
    return nullptr;
  };
  ServiceExecutor& sut = world.run(&service, "/svc", Mode::MT);
  call("/svc");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  expectThatOthersAreServed(sut, "/svc");
  gate.open();
  world.end();
}

TEST_F(AnExecutorWhoseCalleeBlocks, InFindProtocolAdapter_ServesOthers) {
  world.context.adapter = [&](const std::string&) {
    gate.wait();
    return nullptr;
  };
  ServiceExecutor& sut = world.run(&service, "/svc", Mode::MT);
  call("/svc");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  expectThatOthersAreServed(sut, "/svc");
  gate.open();
  world.end();
}

TEST_F(AnExecutorWhoseCalleeBlocks, InALogSink_ServesOthers) {
  zerva::RecordingSink sink("Service Executor", 5);
  sink.onWrite = [&](const zerva::LogRecord& record) {
    if (record.text.find("out of paper") != std::string::npos) {
      gate.wait();
    }
  };
  ScriptedService failing([](const std::string& request) -> std::string {
    if (request == "print") {
      throw std::runtime_error("out of paper");
    }
    return request;
  });
  ServiceExecutor& sut = world.run(&failing, "/svc", Mode::MT);
  caller.sendTo("/svc", "print");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  expectThatOthersAreServed(sut, "/svc");
  gate.open();
  world.end();
}

TEST_F(AnExecutorWhoseCalleeBlocks, InTheMakingOfItsService_CanBeSentToAndShutDown) {
  world.context.make = [&] {
    gate.wait();
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", Mode::ST);
  EXPECT_TRUE(caller.sendTo("/lazy", "1"));
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  EXPECT_TRUE(caller.sendTo("/lazy", "2"));
  EXPECT_TRUE(caller.isServed("/lazy"));
  EXPECT_EQ(zerva::executorsUnderWay().size(), 1U);
  sut.shutdown();
  EXPECT_FALSE(caller.sendTo("/lazy", "3"));
  gate.open();
  world.end();
}

TEST_F(AnExecutorWhoseCalleeBlocks, InFindRealService_CanBeSentToAndShutDown) {
  world.context.real = [&](const std::string&, const std::string&) {
    gate.wait();
    return &service;
  };
  world.context.make = [&] {
    ask("/lazy", "own");
    return &service;
  };
  ServiceExecutor& sut = world.runLazy("/lazy", Mode::ST);
  EXPECT_TRUE(caller.sendTo("/lazy", "1"));
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  EXPECT_TRUE(caller.sendTo("/lazy", "2"));
  EXPECT_TRUE(caller.isServed("/lazy"));
  sut.shutdown();
  EXPECT_FALSE(caller.sendTo("/lazy", "3"));
  gate.open();
  world.end();
}

}  // namespace
