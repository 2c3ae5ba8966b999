#include <gtest/gtest.h>

#include <stdexcept>

#include "framework/CCInterceptorDispatcher.h"
#include "tests/support/ExecutorWorld.h"

namespace {

using testing::ElementsAre;

class Messages final : public CCInterceptor {
 public:
  void messageSent(const InterceptedMessage& message) override { note("sent", message); }
  void messageReceived(const InterceptedMessage& message) override { note("received", message); }

  Journal journal;

 private:
  void note(const std::string& what, const InterceptedMessage& message) {
    journal.add(what + (message.reply ? " reply " : " request ") + message.from + "->" +
                message.to + " " + std::to_string(message.size) + " bytes id " +
                std::to_string(message.requestId) + " " + message.error);
  }
};

class Invocations final : public InvokeInterceptor {
 public:
  void invoked(const Invocation& invocation) override {
    journal.add(invocation.interface + "|" + invocation.method + "|" + invocation.caller + "|" +
                invocation.channel + "|" + invocation.error);
    EXPECT_GE(invocation.duration.count(), 0);
  }

  Journal journal;
};

TEST(AChannelDispatcher, SeesEveryMessageOfTheChannelsMadeWithIt) {
  CCInterceptorDispatcher sut;
  Messages messages;
  sut.addInterceptor(&messages);
  ExecutorWorld world;
  ScriptedService service([](const std::string&) { return std::string("four"); });
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", &sut);

  ask(caller, "/svc", "123", 5);

  EXPECT_THAT(messages.journal.entries(),
              ElementsAre("sent request /test/caller->/svc 3 bytes id 5 ",
                          "received reply /svc->/test/caller 4 bytes id 5 "));
  world.end();
}

TEST(AChannelDispatcher, TellsWhetherAnybodyIsToBeTold) {
  CCInterceptorDispatcher sut;
  EXPECT_FALSE(sut.hasInterceptors());
  Messages messages;
  sut.addInterceptor(&messages);
  EXPECT_TRUE(sut.hasInterceptors());
  sut.removeInterceptor(&messages);
  EXPECT_FALSE(sut.hasInterceptors());
}

TEST(AnInvokeDispatcher, TellsWhetherAnybodyIsToBeTold) {
  InvokeInterceptorDispatcher sut;
  EXPECT_FALSE(sut.hasInterceptors());
  Invocations invocations;
  sut.addInterceptor(&invocations);
  EXPECT_TRUE(sut.hasInterceptors());
  sut.removeInterceptor(&invocations);
  EXPECT_FALSE(sut.hasInterceptors());
}

TEST(AChannelDispatcher, SeesTheOtherEndToo) {
  CCInterceptorDispatcher sut;
  Messages messages;
  sut.addInterceptor(&messages);
  ExecutorWorld world;
  ScriptedService service([](const std::string&) -> std::string { throw std::logic_error("no"); });
  ServiceExecutor executor(&service, new CommsChannel("/svc", &sut), "Ifc", &world.context,
                           &world.pool, nullptr, false);
  ExecutorWorld::start(executor);

  ask("/svc", "123");

  EXPECT_THAT(messages.journal.entries(),
              ElementsAre("received request /test/caller->/svc 3 bytes id 1 ",
                          "sent reply /svc->/test/caller 0 bytes id 1 no"));
  world.end();
}

TEST(AChannelDispatcher, ForgetsAnInterceptorThatWasRemoved) {
  CCInterceptorDispatcher sut;
  Messages stays;
  Messages goes;
  sut.addInterceptor(&stays);
  sut.addInterceptor(&goes);
  sut.removeInterceptor(&goes);
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", &sut);
  ask(caller, "/svc", "x");
  EXPECT_EQ(stays.journal.entries().size(), 2U);
  EXPECT_EQ(goes.journal.entries().size(), 0U);
  world.end();
}

TEST(AnInvokeDispatcher, SeesEveryInvocationBeforeItsCallerGoesOn) {
  InvokeInterceptorDispatcher sut;
  Invocations invocations;
  sut.addInterceptor(&invocations);
  ExecutorWorld world;
  ScriptedService service([](const std::string& request) -> std::string {
    if (request == "bad") {
      throw std::runtime_error("refused");
    }
    return request;
  });
  world.run(&service, "/svc", Mode::MT, &sut);

  ask("/svc", "good");
  ask("/svc", "bad");

  EXPECT_THAT(invocations.journal.entries(),
              ElementsAre("Ifc||/test/caller|/svc|", "Ifc||/test/caller|/svc|refused"));
  world.end();
}

}  // namespace
