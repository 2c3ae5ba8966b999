#include "framework/CommsChannel.h"
#include "tests/contract/ContractTest.h"
#include "tests/support/ExecutorWorld.h"

namespace {

class AChannel : public ContractTest {};

TEST_F(AChannel, KnowsItsName) {
  const CommsChannel sut("/a channel", nullptr);
  EXPECT_EQ(sut.getName(), "/a channel");
}

TEST_F(AChannel, TellsAtOnceThatNobodyServesAName) {
  CommsChannel sut("/caller", nullptr);
  CommsChannelDataContainerMessage message;
  message.setChannel("/nobody");
  message.setData("request");
  message.setRequestId(3);
  EXPECT_FALSE(sut.isServed("/nobody"));
  EXPECT_FALSE(sut.sendTo("/nobody", "news"));
  EXPECT_FALSE(sut.send(message));
  EXPECT_NE(message.getError(), "");
  EXPECT_FALSE(sut.receiveReply(message, 3));
  EXPECT_NE(message.getError(), "");
  EXPECT_EQ(message.getData(), "request");
}

TEST_F(AChannel, AwaitsNoReplyToWhatWasNotSent) {
  CommsChannel sut("/caller", nullptr);
  CommsChannelDataContainerMessage message;
  EXPECT_FALSE(sut.receiveReply(message, 3));
  EXPECT_NE(message.getError(), "");
}

TEST_F(AChannel, BringsEachReplyToItsRequest) {
  ScriptedService service([](const std::string& request) { return "re: " + request; });
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel sut("/caller", nullptr);
  CommsChannelDataContainerMessage one;
  one.setChannel("/svc");
  one.setData("one");
  one.setRequestId(1);
  CommsChannelDataContainerMessage two;
  two.setChannel("/svc");
  two.setData("two");
  two.setRequestId(static_cast<long>(0xffffffffUL));

  EXPECT_TRUE(sut.isServed("/svc"));
  EXPECT_TRUE(sut.send(one));
  EXPECT_TRUE(sut.send(two));
  EXPECT_TRUE(sut.receiveReply(two, -1)) << "ids are unsigned 32-bit numbers";
  EXPECT_TRUE(sut.receiveReply(one, 1));

  EXPECT_EQ(one.getData(), "re: one");
  EXPECT_EQ(two.getData(), "re: two");
}

TEST_F(AChannel, TellsWhetherANameIsStillServedByTheSame) {
  ScriptedService service;
  ExecutorWorld world;
  CommsChannel sut("/caller", nullptr);
  EXPECT_EQ(sut.whoServes("/svc"), "");
  ServiceExecutor& executor = world.run(&service, "/svc", Mode::ST);
  const std::string first = sut.whoServes("/svc");
  EXPECT_NE(first, "");
  EXPECT_EQ(sut.whoServes("/svc"), first);
  executor.shutdown();
  EXPECT_EQ(sut.whoServes("/svc"), "");
  world.run(&service, "/svc", Mode::ST);
  EXPECT_NE(sut.whoServes("/svc"), "");
  EXPECT_NE(sut.whoServes("/svc"), first);
}

TEST_F(AChannel, RefusesAnIdThatIsOutstanding) {
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel sut("/caller", nullptr);
  CommsChannelDataContainerMessage first;
  first.setChannel("/svc");
  first.setData("first");
  first.setRequestId(1);
  CommsChannelDataContainerMessage second;
  second.setChannel("/svc");
  second.setRequestId(1);
  EXPECT_TRUE(sut.send(first));
  EXPECT_FALSE(sut.send(second));
  EXPECT_NE(second.getError(), "");
  EXPECT_TRUE(sut.receiveReply(first, 1));
  EXPECT_EQ(first.getData(), "first");
}

TEST_F(AChannel, OfTwoWithOneName_TheOlderGetsTheRequests) {
  ScriptedService older([](const std::string&) { return std::string("older"); });
  ScriptedService younger([](const std::string&) { return std::string("younger"); });
  ExecutorWorld world;
  ServiceExecutor& first = world.run(&older, "/svc", Mode::ST);
  world.run(&younger, "/svc", Mode::ST);
  EXPECT_EQ(ask("/svc", "").data, "older");
  first.shutdown();
  EXPECT_EQ(ask("/svc", "").data, "younger");
}

}  // namespace
