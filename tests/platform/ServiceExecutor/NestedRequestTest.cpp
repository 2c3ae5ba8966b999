#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "runtime/libClientUtils/CallChain.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using zerva::waitUntil;

TEST(AServiceWithOneThread, CanAskItself) {
  ExecutorWorld world;
  ScriptedService service([](const std::string& request) {
    return request == "outer" ? "outer got " + ask("/svc", "inner").data : request;
  });
  world.run(&service, "/svc", Mode::ST);
  EXPECT_EQ(ask("/svc", "outer").data, "outer got inner");
  world.end();
}

TEST(TwoServicesWithOneThread, CanCallBackIntoEachOther) {
  ExecutorWorld world;
  const auto pingPong = [](const std::string& other) {
    return [other](const std::string& request) {
      const int left = std::stoi(request);
      return left == 0 ? std::string(".") : ask(other, std::to_string(left - 1)).data + "+";
    };
  };
  ScriptedService one(pingPong("/two"));
  ScriptedService two(pingPong("/one"));
  world.run(&one, "/one", Mode::ST);
  world.run(&two, "/two", Mode::ST);
  EXPECT_EQ(ask("/one", "9").data, ".+++++++++");
  world.end();
}

TEST(AServiceWithOneThread, ThatWaits_ServesNobodyElse) {
  ExecutorWorld world;
  Journal journal;
  zerva::Gate gate;
  ScriptedService slow([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&slow, "/slow", Mode::ST);
  ScriptedService service([&](const std::string& request) {
    journal.add("begin " + request);
    if (request == "1") {
      ask("/slow", "x");
    }
    journal.add("end " + request);
    return request;
  });
  world.run(&service, "/svc", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/svc", "1");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  caller.sendTo("/svc", "2");
  gate.open();
  ask("/svc", "3");
  EXPECT_THAT(journal.entries(),
              ElementsAre("begin 1", "end 1", "begin 2", "end 2", "begin 3", "end 3"));
  world.end();
}

TEST(AServiceWithOneThread, ThatWaits_ServesTheMessagesOfItsOwnChainInTheOrderInWhichTheyCame) {
  ExecutorWorld world;
  Journal journal;
  zerva::Gate allSent;
  ScriptedService helper([&](const std::string& request) {
    allSent.wait();
    return ask("/svc", "back").data + request;
  });
  world.run(&helper, "/helper", Mode::ST);
  ScriptedService service([&](const std::string& request) {
    journal.add("begin " + request);
    if (request == "1") {
      ask("/helper", "x");
    }
    journal.add("end " + request);
    return request;
  });
  world.run(&service, "/svc", Mode::ST);
  // One service sends two messages while it serves one request: all three belong together.
  ScriptedService sender([&](const std::string& request) {
    CommsChannel channel("/test/sender", nullptr);
    channel.sendTo("/svc", "1");
    channel.sendTo("/svc", "2");
    allSent.open();
    return request;
  });
  world.run(&sender, "/sender", Mode::ST);
  ask("/sender", "go");
  ask("/svc", "3");
  EXPECT_THAT(journal.entries(), ElementsAre("begin 1", "begin 2", "end 2", "begin back",
                                             "end back", "end 1", "begin 3", "end 3"));
  world.end();
}

TEST(AServiceWithOneThread, GetsAnErrorWhenItAsksItselfWithoutEnd) {
  ExecutorWorld world;
  int calls = 0;
  ScriptedService service([&](const std::string& request) {
    ++calls;
    const Answer answer = ask("/svc", request);
    return answer.ok ? answer.data : answer.error;
  });
  world.run(&service, "/svc", Mode::ST);
  EXPECT_THAT(ask("/svc", "x").data, HasSubstr("requests inside each other on the thread"));
  EXPECT_EQ(calls, static_cast<int>(zerva::kMaximumNestingOnOneThread));
  world.end();
}

TEST(AServiceWithManyThreads, GetsAnErrorWhenItAsksItselfWithoutEnd) {
  ExecutorWorld world;
  std::atomic<unsigned> calls{0};
  ScriptedService service([&](const std::string& request) {
    ++calls;
    const Answer answer = ask("/svc", request);
    return answer.ok ? answer.data : answer.error;
  });
  world.run(&service, "/svc", Mode::MT);
  EXPECT_THAT(ask("/svc", "x").data, HasSubstr("requests wait for one another"));
  EXPECT_EQ(calls, zerva::kMaximumChainLength);
  world.end();
}

TEST(AChainOfServices, MayBeLongerThanThePoolHasThreads) {
  ExecutorWorld world(2);
  std::vector<std::unique_ptr<ScriptedService>> services;
  for (int i = 0; i < 20; ++i) {
    services.push_back(std::make_unique<ScriptedService>([i](const std::string& request) {
      return i == 19 ? request : ask("/svc" + std::to_string(i + 1), request).data + "<";
    }));
    world.run(services.back().get(), "/svc" + std::to_string(i), Mode::MT);
  }
  EXPECT_EQ(ask("/svc0", "x").data, "x" + std::string(19, '<'));
  world.end();
}

// A limit that counted messages nobody waits for once ended a service that posts itself its steps.
TEST(AServiceThatSendsItselfMessages, MayDoSoWithoutEnd) {
  ExecutorWorld world;
  constexpr int kSteps = 1000;
  std::atomic<int> steps{0};
  CommsChannel own("/own", nullptr);
  ScriptedService service([&](const std::string& request) {
    if (++steps < kSteps) {
      EXPECT_TRUE(own.sendTo("/svc", request));
    }
    return request;
  });
  world.run(&service, "/svc", Mode::ST);
  own.sendTo("/svc", "step");
  EXPECT_TRUE(waitUntil([&] { return steps == kSteps; }));
  world.end();
}

}  // namespace
