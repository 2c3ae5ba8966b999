#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <thread>

#include "runtime/libClientUtils/Processors.h"
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

// On one processor each waits for one that sleeps, until somebody looks after them.
TEST(APool, StartsATaskAlthoughThoseBeforeItDoNotEnd) {
  constexpr int kTasks = 40;
  std::atomic<int> done{0};
  {
    ServiceThreadPool sut(kTasks, nullptr);
    zerva::Barrier all(kTasks);
    for (int round = 1; round <= 3; ++round) {
      for (int i = 0; i < kTasks; ++i) {
        ASSERT_TRUE(sut.execute([&] {
          all.arriveAndWait();
          ++done;
        }));
      }
      ASSERT_TRUE(waitUntil([&] { return done == round * kTasks; }));
    }
  }
}

TEST(APool, StartsATaskAlthoughTheOneBeforeItDoesNotEndAndItHasLittleToDo) {
  ServiceThreadPool sut(2, nullptr);
  zerva::Gate gate;
  ASSERT_TRUE(sut.execute([&] { gate.wait(); }));
  ASSERT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  for (int i = 1; i <= 20; ++i) {
    std::atomic<bool> done{false};
    ASSERT_TRUE(sut.execute([&] { done = true; }));
    ASSERT_TRUE(waitUntil([&] { return done.load(); }));
  }
  gate.open();
}

long threadsNow() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                       std::filesystem::directory_iterator());
}

// How many it makes is a matter of time: what takes long for want of a processor looks like what
// does not end. So it has as many goes as it likes. The first thread is there: as long as it is
// only being made, it may fail, and each task gets one.
TEST(APool, MakesNoThreadForEachOfManyShortTasks) {
  constexpr int kTasks = 30;
  const long few = threadsNow() + static_cast<long>(std::max(2U, zerva::usableProcessors())) + 1;
  EXPECT_TRUE(waitUntil([&] {
    ServiceThreadPool sut(kTasks, nullptr);
    std::atomic<int> done{0};
    sut.execute([&] { ++done; });
    if (!waitUntil([&] { return done == 1; })) return false;
    for (int i = 0; i < kTasks; ++i) {
      sut.execute([&] { ++done; });
    }
    return waitUntil([&] { return done == kTasks + 1; }) && threadsNow() <= few;
  }));
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
  ExecutorWorld world(2);
  zerva::Gate gate;
  ScriptedService slow([&](const std::string& request) {
    gate.wait();
    return request;
  });
  world.run(&slow, "/slow", Mode::ST);
  ScriptedService service([](const std::string& request) { return ask("/slow", request).data; });
  world.run(&service, "/svc", Mode::MT);
  const auto before = threadsNow();
  CommsChannel caller("/test/caller", nullptr);
  for (int i = 0; i < 20; ++i) {
    caller.sendTo("/svc", "x");
  }
  ASSERT_TRUE(waitUntil([&] { return threadsNow() >= before + 20; }));
  gate.open();
  EXPECT_TRUE(waitUntil([&] { return threadsNow() <= before + 2; }));
  world.end();
}

}  // namespace
