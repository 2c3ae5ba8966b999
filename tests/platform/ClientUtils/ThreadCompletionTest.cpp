#include <gmock/gmock.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "framework/Threader.h"
#include "runtime/libClientUtils/Waiting.h"
#include "tests/platform/ClientUtils/FunctionBody.h"
#include "tests/platform/ClientUtils/ThreadReports.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/FileText.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;

/** Sets a flag when its thread ends. */
struct AtThreadEnd {
  ~AtThreadEnd() {
    if (flag != nullptr) *flag = true;
  }
  std::atomic<bool>* flag = nullptr;
};

thread_local AtThreadEnd atThreadEnd;

/** Bytes of address space that this process uses. */
std::size_t addressSpace() {
  constexpr std::size_t kPage = 4096;
  return std::stoul(readFile("/proc/self/statm")) * kPage;
}

class ThreadCompletion : public testing::Test {
 protected:
  static void spawn(Threadable& body) {
    ASSERT_TRUE(Threader().spawn(nullptr, &body, "a thread", THREAD_PRIORITY_NORMAL, 0));
  }
};

TEST_F(ThreadCompletion, IsWaitedForUntilTheThreadsOwnObjectsAreDestroyed) {
  std::atomic<bool> destroyed{false};
  FunctionBody sut([&] { atThreadEnd.flag = &destroyed; });
  spawn(sut);

  sut.waitForThreadCompletion();

  EXPECT_TRUE(destroyed);
}

TEST_F(ThreadCompletion, LeavesNoThreadBehind) {
  std::atomic<int> thread{0};
  FunctionBody sut([&] { thread = ::gettid(); });
  spawn(sut);

  sut.waitForThreadCompletion();

  EXPECT_TRUE(waitUntil([&] { return threadState(thread) == '\0'; }));
}

TEST_F(ThreadCompletion, MayBeWaitedForAgain) {
  FunctionBody sut([] {});
  spawn(sut);
  sut.waitForThreadCompletion();

  sut.waitForThreadCompletion();
}

TEST_F(ThreadCompletion, OfABodyThatNeverRan_IsThereAtOnce) {
  FunctionBody sut([] {});

  sut.waitForThreadCompletion();
}

TEST_F(ThreadCompletion, MayBeWaitedForByManyAtOnce) {
  constexpr std::size_t kWaiters = 8;
  Gate gate;
  std::atomic<bool> ended{false};
  FunctionBody sut([&] {
    gate.wait();
    ended = true;
  });
  spawn(sut);
  std::vector<std::jthread> waiters;
  for (std::size_t i = 0; i < kWaiters; ++i) {
    waiters.emplace_back([&] {
      sut.waitForThreadCompletion();
      EXPECT_TRUE(ended);
    });
  }
  ASSERT_TRUE(waitUntil([] { return Waiting::all().size() == kWaiters; }));

  gate.open();
}

TEST_F(ThreadCompletion, SeenByTheFirstOfManyWaiters_AllowsItToDeleteTheBody) {
  for (int i = 0; i < 100; ++i) {
    Gate gate;
    auto* const sut = new FunctionBody([&] { gate.wait(); });
    spawn(*sut);
    std::atomic<int> left{2};
    const auto wait = [&] {
      sut->waitForThreadCompletion();
      if (--left == 1) delete sut;
    };
    std::jthread one(wait);
    std::jthread two(wait);
    ASSERT_TRUE(waitUntil([] { return Waiting::all().size() == 2; }));
    gate.open();
  }
}

TEST_F(ThreadCompletion, WaitedForOnTheThreadItself_IsGivenUpAndLogged) {
  const RecordingSink log("Threads", 2);
  std::atomic<bool> returned{false};
  FunctionBody* self = nullptr;
  FunctionBody sut([&] {
    self->waitForThreadCompletion();
    returned = true;
  });
  self = &sut;
  spawn(sut);

  sut.waitForThreadCompletion();

  EXPECT_TRUE(returned);
  ASSERT_EQ(log.texts().size(), 1U);
  EXPECT_THAT(log.texts().front(), HasSubstr("FunctionBody"));
  EXPECT_THAT(log.texts().front(), HasSubstr("waits for its own thread"));
}

TEST_F(ThreadCompletion, IsNamedByTypeAndLibraryWhileItIsWaitedFor) {
  Gate gate;
  FunctionBody sut([&] { gate.wait(); });
  spawn(sut);
  std::jthread waiter([&] { sut.waitForThreadCompletion(); });

  EXPECT_TRUE(waitUntil([] {
    const auto all = Waiting::all();
    return all.size() == 1 &&
           all.front().find("the end of the thread body zerva::FunctionBody of ") == 0;
  }));

  gate.open();
  waiter.join();
  EXPECT_THAT(Waiting::all(), IsEmpty());
}

TEST_F(ThreadCompletion, IsWaitedForAgainAfterTheBodyWasStartedAgain) {
  std::atomic<int> runs{0};
  FunctionBody sut([&] { ++runs; });

  for (int i = 1; i <= 50; ++i) {
    spawn(sut);
    sut.waitForThreadCompletion();
    ASSERT_EQ(runs, i);
  }
}

TEST_F(ThreadCompletion, OfOneStart_IsNotMistakenForThatOfTheNext) {
  constexpr int kStarts = 100;
  std::atomic<int> runs{0};
  std::atomic<bool> over{false};
  FunctionBody sut([&] { ++runs; });
  std::jthread other([&] {
    while (!over) sut.waitForThreadCompletion();
  });

  for (int i = 1; i <= kStarts; ++i) {
    spawn(sut);
    sut.waitForThreadCompletion();
    ASSERT_EQ(runs, i);
  }
  over = true;
}

TEST_F(ThreadCompletion, OfABodyDeletedWithoutWaiting_IsLeftToTheSystem) {
  constexpr int kThreads = 300;
  // So large that stacks that are not given back stand out, and fill a 32-bit process.
  constexpr std::size_t kStack = 16 * 1024 * 1024;
  const std::size_t before = addressSpace();

  for (int i = 0; i < kThreads; ++i) {
    std::atomic<bool> ended{false};
    auto sut = std::make_unique<FunctionBody>([&] { atThreadEnd.flag = &ended; });
    ASSERT_TRUE(Threader().spawn(nullptr, sut.get(), "a thread", THREAD_PRIORITY_NORMAL, kStack));
    ASSERT_TRUE(waitUntil([&] { return ended.load(); }));
  }

  EXPECT_LT(addressSpace(), before + kThreads * (kStack / 2));
}

TEST_F(ThreadCompletion, OfABodyThatDeletesItself_IsLeftToTheSystem) {
  const std::size_t before = threadCount();
  std::atomic<bool> ended{false};
  Gate gate;
  FunctionBody* self = nullptr;
  self = new FunctionBody([&] {
    atThreadEnd.flag = &ended;
    gate.wait();
    delete self;
  });
  spawn(*self);

  gate.open();

  EXPECT_TRUE(waitUntil([&] { return ended.load(); }));
  EXPECT_TRUE(waitUntil([&] { return threadCount() == before; }));
}

}  // namespace
}  // namespace zerva
