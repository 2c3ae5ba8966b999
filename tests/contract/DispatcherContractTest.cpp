#include "framework/CCInterceptorDispatcher.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "tests/contract/ContractTest.h"
#include "tests/support/ExecutorWorld.h"

namespace {

using testing::ElementsAre;

class ADispatcher : public ContractTest {
 protected:
  class Messages final : public CCInterceptor {
   public:
    void messageSent(const InterceptedMessage& message) override {
      journal.add("sent " + message.to);
    }
    void messageReceived(const InterceptedMessage& message) override {
      journal.add("received " + message.from);
    }
    Journal journal;
  };

  class Invocations final : public InvokeInterceptor {
   public:
    void invoked(const Invocation& invocation) override {
      journal.add(invocation.caller + " " + invocation.channel + " " + invocation.interface);
    }
    Journal journal;
  };
};

TEST_F(ADispatcher, OfChannels_ShowsWhatAChannelSendsAndReceives) {
  CCInterceptorDispatcher sut;
  Messages messages;
  sut.addInterceptor(&messages);
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/caller", &sut);
  ask(caller, "/svc", "x");
  EXPECT_THAT(messages.journal.entries(), ElementsAre("sent /svc", "received /svc"));
  sut.removeInterceptor(&messages);
  ask(caller, "/svc", "x", 2);
  EXPECT_EQ(messages.journal.entries().size(), 2U);
}

TEST_F(ADispatcher, OfInvocations_ShowsWhatAnExecutorServes) {
  InvokeInterceptorDispatcher sut;
  Invocations invocations;
  sut.addInterceptor(&invocations);
  ScriptedService service;
  ExecutorWorld world;
  world.run(&service, "/svc", Mode::ST, &sut);
  CommsChannel caller("/caller", nullptr);
  ask(caller, "/svc", "x");
  EXPECT_THAT(invocations.journal.entries(), ElementsAre("/caller /svc Ifc"));
  sut.removeInterceptor(&invocations);
  ask(caller, "/svc", "x", 2);
  EXPECT_EQ(invocations.journal.entries().size(), 1U);
}

}  // namespace
