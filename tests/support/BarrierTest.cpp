#include <atomic>
#include <stdexcept>
#include <thread>

#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

TEST(ABarrier, LetsNobodyGoOnBeforeAllHaveCome) {
  constexpr int threads = 4;
  constexpr int rounds = 50;
  Barrier sut{threads};
  std::atomic<int> arrived{0};
  std::atomic<int> early{0};

  concurrently(threads, [&](std::size_t) {
    for (int round = 1; round <= rounds; ++round) {
      ++arrived;
      sut.arriveAndWait();
      if (arrived < round * threads) ++early;
      sut.arriveAndWait();
    }
  });

  EXPECT_EQ(early, 0);
}

TEST(AGate, HoldsThreadsBackUntilItIsOpened) {
  Gate sut;
  std::atomic<bool> through{false};
  std::jthread visitor{[&] {
    sut.wait();
    through = true;
  }};
  ASSERT_TRUE(waitUntil([&] { return sut.waiting() == 1; }));
  EXPECT_FALSE(through);

  sut.open();

  EXPECT_TRUE(waitUntil([&] { return through.load(); }));
  EXPECT_TRUE(sut.isOpen());
}

TEST(ABodyRunConcurrently, RunsOnceOnEachThread) {
  std::atomic<unsigned> numbers{0};

  concurrently(3, [&](std::size_t thread) { numbers += 1U << (8 * thread); });

  EXPECT_EQ(numbers, 0x010101U);
}

TEST(ABodyRunConcurrently, HandsItsExceptionToTheCaller) {
  EXPECT_THROW(concurrently(2,
                            [](std::size_t thread) {
                              if (thread == 1) throw std::runtime_error{"one of two"};
                            }),
               std::runtime_error);
}

}  // namespace
}  // namespace zerva
