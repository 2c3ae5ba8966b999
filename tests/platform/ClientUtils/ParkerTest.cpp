#include <gtest/gtest.h>
#include <sched.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "runtime/libClientUtils/Parker.h"
#include "runtime/libClientUtils/Processors.h"

namespace zerva {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

Clock::time_point late() { return Clock::now() + seconds(60); }

TEST(AParker, ThatWasUnparkedBefore_DoesNotWait) {
  Parker sut;
  sut.unpark();
  EXPECT_TRUE(sut.park(late()));
}

TEST(AParker, RemembersOneUnparkingHoweverManyThereWere) {
  Parker sut;
  sut.unpark();
  sut.unpark();
  EXPECT_TRUE(sut.park(late()));
  EXPECT_FALSE(sut.park(Clock::now() + milliseconds(5)));
}

TEST(AParker, WaitsUntilItsDeadlineAndNotLess) {
  Parker sut;
  const auto deadline = Clock::now() + milliseconds(20);
  EXPECT_FALSE(sut.park(deadline));
  EXPECT_GE(Clock::now(), deadline);
}

TEST(AParker, WhoseDeadlineIsOver_StillTakesAnUnparkingThatCame) {
  Parker sut;
  sut.unpark();
  EXPECT_TRUE(sut.park(Clock::now() - seconds(1)));
  EXPECT_FALSE(sut.park(Clock::now() - seconds(1)));
}

TEST(AParker, WaitsForADeadlineThatIsYearsAway) {
  Parker sut;
  std::thread other([&] { sut.unpark(); });
  EXPECT_TRUE(sut.park(Clock::now() + std::chrono::hours(24 * 365 * 80)));
  other.join();
}

TEST(AThread, HasOneParkerThatGoesWithIt) {
  std::weak_ptr<Parker> seen;
  std::thread([&] {
    const auto sut = Parker::ofThisThread();
    EXPECT_EQ(Parker::ofThisThread(), sut);
    seen = sut;
  }).join();
  EXPECT_TRUE(seen.expired());
  EXPECT_NE(Parker::ofThisThread(), nullptr);
}

/** Two threads that wait for each other, and now and then longer than anybody lingers. */
void expectNoUnparkingIsLost() {
  constexpr int kRounds = 20000;
  Parker there;
  Parker here;
  std::atomic<int> asked{0};
  std::atomic<int> answered{0};
  std::thread other([&] {
    for (int round = 1; round <= kRounds; ++round) {
      while (asked < round) there.park();
      if (round % 1000 == 0) std::this_thread::sleep_for(milliseconds(1));
      answered = round;
      here.unpark();
    }
  });
  for (int round = 1; round <= kRounds; ++round) {
    asked = round;
    there.unpark();
    while (answered < round) ASSERT_TRUE(here.park(late()));
  }
  other.join();
}

/** Holds the calling thread, and those that it makes from now on, on one processor. */
void stayOnOneProcessor() {
  cpu_set_t before;
  ASSERT_EQ(sched_getaffinity(0, sizeof(before), &before), 0);
  EXPECT_EQ(mayUseSeveralProcessors(), CPU_COUNT(&before) > 1);
  cpu_set_t one;
  CPU_ZERO(&one);
  for (std::size_t processor = 0; CPU_COUNT(&one) == 0; ++processor) {
    if (CPU_ISSET(processor, &before)) CPU_SET(processor, &one);
  }
  ASSERT_EQ(sched_setaffinity(0, sizeof(one), &one), 0);
}

// Whether the threads look for each other or sleep changes all the time here.
TEST(AParker, LosesNoUnparkingHoweverItMeetsThePark) { expectNoUnparkingIsLost(); }

// There they make room for each other before they sleep.
TEST(AParker, OnOneProcessor_LosesNoUnparkingHoweverItMeetsThePark) {
  std::thread([] {
    stayOnOneProcessor();
    expectNoUnparkingIsLost();
  }).join();
}

TEST(AThread, ThatIsHeldOnOneProcessor_MayNotUseSeveral) {
  std::thread([] {
    stayOnOneProcessor();
    EXPECT_FALSE(mayUseSeveralProcessors());
  }).join();
}

}  // namespace
}  // namespace zerva
