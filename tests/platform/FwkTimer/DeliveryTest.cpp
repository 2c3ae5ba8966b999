#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <set>
#include <string>

#include "framework/Dll.h"
#include "framework/FwkTimer.h"
#include "tests/platform/Libraries.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using testing::HasSubstr;
using zerva::waitUntil;

/** How the owners of timers get their expiries. */
class AnExpiry : public testing::Test {
 protected:
  AnExpiry() {
    other.onTimer = [this](int) { ++periods; };
  }

  /** Waits until what was due when it was called has been handed on by the timer's thread. */
  void letPeriodsGoBy() {
    const int before = periods;
    ASSERT_TRUE(waitUntil([&] { return periods >= before + 5; }));
  }

  void start(Executable& of) { sut.startTimer(sut.createTimer(&of, 1)); }

  ScriptedService owner;
  ScriptedService other;  // has no channel
  std::atomic<int> expiries{0};
  std::atomic<int> periods{0};
  ExecutorWorld world;
  FwkTimer sut{&world.context};
};

TEST_F(AnExpiry, OfAnOwnerWithOneThread_IsNotServedInsideARequestThatWaits) {
  zerva::Gate gate;
  // Calls back, so that the thread that waits looks for what it may serve when the expiry is there.
  ScriptedService slow([&](const std::string& request) {
    gate.wait();
    return ask("/waiting", "back").data + request;
  });
  world.run(&slow, "/slow", Mode::ST);
  std::atomic<int> inside{-1};
  ScriptedService waiting([&](const std::string& request) {
    if (request != "back") {
      EXPECT_EQ(ask("/slow", "x").data, "backx");
      inside = expiries.load();
    }
    return request;
  });
  waiting.onTimer = [&](int) { ++expiries; };
  world.context.channelOf = [&](Executable* asked) {
    return asked == &waiting ? std::string("/waiting") : std::string();
  };
  world.run(&waiting, "/waiting", Mode::ST);
  CommsChannel caller("/test/caller", nullptr);
  caller.sendTo("/waiting", "x");
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  start(waiting);
  start(other);
  letPeriodsGoBy();

  gate.open();

  EXPECT_TRUE(waitUntil([&] { return expiries > 0; })) << "it is served when the request is over";
  EXPECT_EQ(inside, 0);
  sut.shutdown();
  world.end();
}

TEST_F(AnExpiry, OfAnOwnerWithoutAChannel_IsDeliveredOnTheOneThreadOfTheTimers) {
  std::mutex mutex;
  std::set<pid_t> threads;
  std::atomic<int> inside{0};
  std::atomic<bool> overlapped{false};
  const auto note = [&](int) {
    overlapped = overlapped || ++inside > 1;
    {
      const std::lock_guard lock(mutex);
      threads.insert(::gettid());
    }
    ++periods;
    --inside;
  };
  owner.onTimer = note;
  other.onTimer = note;
  start(owner);
  start(owner);
  start(other);
  start(other);
  ASSERT_TRUE(waitUntil([&] { return periods >= 50; }));
  sut.shutdown();
  EXPECT_FALSE(overlapped);
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_EQ(threads.count(::gettid()), 0U);
}

TEST_F(AnExpiry, ThatThrowsATypeOfALibraryThatIsClosedThen_IsReported) {
  const zerva::RecordingSink log("Timer", 2);
  {
    Dll library(zerva::libraryDirectory() / "libplatform_plugin.so");
    auto* const create = reinterpret_cast<Service* (*)()>(library.symbol("createPluginService"));
    const std::unique_ptr<Service> plugin(create());
    owner.onTimer = [&](int timer) {
      sut.stopTimer(timer);
      plugin->run();
    };
    start(owner);
    ASSERT_TRUE(waitUntil([&] { return !log.texts().empty(); }));
    sut.shutdown();
  }
  EXPECT_THAT(log.texts().at(0), HasSubstr("the plugin failed"));
}

}  // namespace
