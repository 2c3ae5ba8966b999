#include <gtest/gtest.h>

#include <chrono>

#include "tests/platform/ServiceExecutor/ReplyTimeoutIs.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"

namespace {

using zerva::ReplyTimeoutIs;

/** Holds its first request back until the test lets it go, and answers all with what they say. */
class ALateReply : public testing::Test {
 protected:
  ALateReply() { world.run(&service, "/svc", Mode::ST); }

  zerva::Gate gate;
  ScriptedService service{[this](const std::string& request) {
    if (request == "first") {
      gate.wait();
    }
    return "reply to " + request;
  }};
  ExecutorWorld world;
  CommsChannel caller{"/test/caller", nullptr};
};

// The same channel answers both, so who answers does not tell the two replies apart.
TEST_F(ALateReply, IsNotHeardByALaterRequestWithTheSameId) {
  {
    const ReplyTimeoutIs shortTime(std::chrono::milliseconds(1));
    ASSERT_FALSE(ask(caller, "/svc", "first", 1).ok);
  }
  CommsChannelDataContainerMessage second;
  second.setChannel("/svc");
  second.setData("second");
  second.setRequestId(1);
  ASSERT_TRUE(caller.send(second));

  gate.open();

  EXPECT_TRUE(caller.receiveReply(second, 1)) << second.getError();
  EXPECT_EQ(second.getData(), "reply to second");
  world.end();
}

TEST_F(ALateReply, IsDroppedWhenItsIdIsFree) {
  {
    const ReplyTimeoutIs shortTime(std::chrono::milliseconds(1));
    ASSERT_FALSE(ask(caller, "/svc", "first", 1).ok);
  }
  gate.open();
  // The service takes the next one when the reply to the first was sent.
  ask("/svc", "from another channel");

  CommsChannelDataContainerMessage message;
  EXPECT_FALSE(caller.receiveReply(message, 1));
  EXPECT_EQ(message.getData(), "");
  world.end();
}

}  // namespace
