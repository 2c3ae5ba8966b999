#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "runtime/libServiceExecutor/Drain.h"
#include "tests/support/Barrier.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

TEST(APool, RunsAsManyTasksAtOnceAsItsSizeSaysAndNoMore) {
  std::atomic<int> inside{0};
  std::atomic<int> most{0};
  std::atomic<int> done{0};
  {
    ServiceThreadPool sut(3, nullptr);
    zerva::Barrier three(3);
    for (int i = 0; i < 30; ++i) {
      ASSERT_TRUE(sut.execute([&] {
        const int now = ++inside;
        for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
        }
        three.arriveAndWait();
        --inside;
        ++done;
      }));
    }
    ASSERT_TRUE(waitUntil([&] { return done == 30; }));
  }
  EXPECT_EQ(most, 3);
}

TEST(APool, FinishesItsTasksBeforeItIsGone) {
  std::atomic<int> done{0};
  {
    ServiceThreadPool sut(2, nullptr);
    for (int i = 0; i < 100; ++i) {
      ASSERT_TRUE(sut.execute([&] { ++done; }));
    }
  }
  EXPECT_EQ(done, 100);
}

TEST(APool, StartsTasksInTheOrderInWhichTheyCame) {
  Journal journal;
  {
    ServiceThreadPool sut(1, nullptr);
    for (int i = 0; i < 5; ++i) {
      ASSERT_TRUE(sut.execute([&journal, i] { journal.add(std::to_string(i)); }));
    }
  }
  EXPECT_EQ(journal.entries(), (std::vector<std::string>{"0", "1", "2", "3", "4"}));
}

TEST(APool, DeletesTheExecutorsThatNobodyElseDeleted) {
  ScriptedContext context;
  auto sut = std::make_unique<ServiceThreadPool>(2, nullptr);
  auto* const left =
      new ServiceExecutor("lib", "creator", "Ifc", new CommsChannel("/left", nullptr), &context,
                          sut.get(), nullptr, true);
  ExecutorWorld::start(*left);
  CommsChannel caller("/test/caller", nullptr);
  ASSERT_TRUE(caller.isServed("/left"));
  const std::size_t unrecorded = zerva::unrecordedServices();

  sut.reset();

  EXPECT_FALSE(caller.isServed("/left"));
  EXPECT_EQ(zerva::unrecordedServices(), unrecorded) << "its service was never made";
}

TEST(APool, KeepsReachableTheServiceOfAnExecutorThatNobodyElseDeleted) {
  ScriptedContext context;
  ScriptedService service;
  auto sut = std::make_unique<ServiceThreadPool>(2, nullptr);
  new ServiceExecutor(&service, new CommsChannel("/left", nullptr), "", &context, sut.get(),
                      nullptr, true);
  const std::size_t unrecorded = zerva::unrecordedServices();
  sut.reset();
  EXPECT_EQ(zerva::unrecordedServices(), unrecorded + 1);
}

TEST(APool, EndsTheThreadsThatItNeededOnlyWhileOthersWaited) {
  const auto threads = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                         std::filesystem::directory_iterator());
  };
  ExecutorWorld world(2);
  zerva::Gate gate;
  ScriptedService slow([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&slow, "/slow", Mode::ST);
  ScriptedService service([](const std::string& request) { return ask("/slow", request).data; });
  world.run(&service, "/svc", Mode::MT);
  const auto before = threads();
  CommsChannel caller("/test/caller", nullptr);
  for (int i = 0; i < 20; ++i) {
    caller.sendTo("/svc", "x");
  }
  ASSERT_TRUE(waitUntil([&] { return threads() >= before + 20; }));
  gate.open();
  EXPECT_TRUE(waitUntil([&] { return threads() <= before + 2; }));
  world.end();
}

}  // namespace
