#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "framework/Semaphore.h"
#include "tests/platform/ClientUtils/ThreadReports.h"
#include "tests/support/Concurrently.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

constexpr int kWithoutLimit = -1;

bool takenElsewhere(Semaphore& semaphore, int timeout = 0) {
  bool taken = false;
  std::thread([&] { taken = semaphore.take(timeout); }).join();
  return taken;
}

TEST(ASemaphore, GivesOutAsManyPermitsAsAreFreeAtFirst) {
  Semaphore sut(2, 3, false);

  EXPECT_TRUE(sut.take(0));
  EXPECT_TRUE(sut.take(0));
  EXPECT_FALSE(sut.take(0));
}

TEST(ASemaphore, GivesOutAPermitThatWasGivenBack) {
  Semaphore sut(0, 1, false);

  EXPECT_TRUE(sut.give());

  EXPECT_TRUE(sut.take(kWithoutLimit));
}

TEST(ASemaphore, WithAllPermitsFree_TakesNoMoreBack) {
  Semaphore sut(0, 2, false);
  EXPECT_TRUE(sut.give());
  EXPECT_TRUE(sut.give());

  EXPECT_FALSE(sut.give());

  EXPECT_TRUE(sut.take(0));
  EXPECT_TRUE(sut.take(0));
  EXPECT_FALSE(sut.take(0));
}

TEST(ASemaphore, IsGivenUpWhenTheTimeRanOut) {
  Semaphore sut(0, 1, false);
  const auto begin = std::chrono::steady_clock::now();

  EXPECT_FALSE(sut.take(30));

  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(30));
}

TEST(ASemaphore, WakesOneWhoWaitsWithoutLimit) {
  Semaphore sut(0, 1, false);
  std::jthread taker([&] { EXPECT_TRUE(sut.take(kWithoutLimit)); });

  EXPECT_TRUE(sut.give());
}

TEST(ASemaphore, WakesOneWhoWaitsWithLimit) {
  Semaphore sut(0, 1, false);
  std::jthread taker([&] { EXPECT_TRUE(sut.take(60000)); });

  EXPECT_TRUE(sut.give());
}

TEST(ASemaphore, ThatIsWaitedFor_PutsTheThreadToSleep) {
  Semaphore sut(0, 1, false);
  std::atomic<int> id{0};
  std::jthread taker([&] {
    id = ::gettid();
    sut.take(kWithoutLimit);
  });

  EXPECT_TRUE(waitUntil([&] { return id != 0 && threadState(id) == 'S'; }));

  sut.give();
}

TEST(ASemaphore, ThatIsNotRecursive_HoldsUpItsOwnThreadToo) {
  Semaphore sut(1, 1, false);
  ASSERT_TRUE(sut.take(0));

  EXPECT_FALSE(sut.take(0));
}

TEST(ASemaphore, ThatIsRecursive_IsTakenAgainByItsOwnThread) {
  Semaphore sut(1, 1, true);
  ASSERT_TRUE(sut.take(kWithoutLimit));

  EXPECT_TRUE(sut.take(kWithoutLimit));
}

TEST(ASemaphore, ThatIsRecursive_HoldsUpOthersUntilEachTakeWasGivenBack) {
  Semaphore sut(1, 1, true);
  ASSERT_TRUE(sut.take(0));
  ASSERT_TRUE(sut.take(0));

  EXPECT_FALSE(takenElsewhere(sut));
  EXPECT_TRUE(sut.give());
  EXPECT_FALSE(takenElsewhere(sut));
  EXPECT_TRUE(sut.give());
  EXPECT_TRUE(takenElsewhere(sut));
}

TEST(ASemaphore, ThatIsRecursive_IsNotTakenAgainByAThreadThatGaveItBack) {
  Semaphore sut(1, 1, true);
  ASSERT_TRUE(sut.take(0));
  ASSERT_TRUE(sut.give());
  ASSERT_TRUE(takenElsewhere(sut));

  EXPECT_FALSE(sut.take(0));
}

TEST(ASemaphore, ThatIsRecursive_TakesNoMoreBackThanWasTaken) {
  Semaphore sut(1, 1, true);
  sut.take(0);
  sut.take(0);

  EXPECT_TRUE(sut.give());
  EXPECT_TRUE(sut.give());
  EXPECT_FALSE(sut.give());
}

TEST(ASemaphore, LetsOneThreadAtATimeIn) {
  constexpr std::size_t kThreads = 6;
  constexpr int kRounds = 2000;
  Semaphore sut(1, 1, false);
  int guarded = 0;

  concurrently(kThreads, [&](std::size_t) {
    for (int i = 0; i < kRounds; ++i) {
      ASSERT_TRUE(sut.take(kWithoutLimit));
      ++guarded;
      ASSERT_TRUE(sut.give());
    }
  });

  EXPECT_EQ(guarded, static_cast<int>(kThreads) * kRounds);
}

TEST(ASemaphore, LosesNoPermitBetweenThoseWhoGiveAndThoseWhoTake) {
  constexpr int kPermits = 20000;
  Semaphore sut(0, kPermits, false);

  concurrently(4, [&](std::size_t thread) {
    for (int i = 0; i < kPermits / 2; ++i) {
      if (thread < 2) {
        ASSERT_TRUE(sut.give());
      } else {
        ASSERT_TRUE(sut.take(kWithoutLimit));
      }
    }
  });

  EXPECT_FALSE(sut.take(0));
}

TEST(ASemaphore, ThatIsGivenSeveralTimesAtOnce_WakesAsManyWhoWait) {
  constexpr std::size_t kTakers = 3;
  constexpr int kRounds = 3000;
  Semaphore sut(0, kTakers, false);
  Semaphore taken(0, kTakers, false);

  // Nobody gives more before all who wait have got theirs.
  concurrently(kTakers + 1, [&](std::size_t thread) {
    for (int round = 0; round < kRounds; ++round) {
      for (std::size_t taker = 0; thread == kTakers && taker < kTakers; ++taker) {
        ASSERT_TRUE(sut.give());
      }
      for (std::size_t taker = 0; thread == kTakers && taker < kTakers; ++taker) {
        ASSERT_TRUE(taken.take(kWithoutLimit));
      }
      if (thread < kTakers) {
        ASSERT_TRUE(sut.take(kWithoutLimit));
        ASSERT_TRUE(taken.give());
      }
    }
  });
}

TEST(ASemaphore, LosesNoWakingToOneWhoseTimeRunsOut) {
  constexpr int kPermits = 500;
  Semaphore sut(0, kPermits, false);
  std::atomic<int> taken{0};

  concurrently(5, [&](std::size_t thread) {
    for (int i = 0; i < kPermits; ++i) {
      if (thread == 0) {
        ASSERT_TRUE(sut.give());
        // One at a time, so that each giving meets those who wait and those who give up.
        ASSERT_TRUE(waitUntil([&] { return taken > i; }));
      } else if (thread < 4) {
        taken += sut.take(1) ? 1 : 0;
      }
    }
    while (thread == 4 && taken < kPermits) taken += sut.take(1) ? 1 : 0;
  });

  EXPECT_EQ(taken, kPermits);
}

TEST(ASemaphore, MayBeDeletedByTheOneWhomItWoke) {
  for (int i = 0; i < 300; ++i) {
    auto* const sut = new Semaphore(0, 1, false);
    std::jthread taker([sut] {
      sut->take(kWithoutLimit);
      delete sut;
    });
    sut->give();
  }
}

TEST(ASemaphore, TakenAndGivenWithoutContention_MakesNoSystemCall) {
  Semaphore sut(1, 1, false);
  sut.take(kWithoutLimit);
  sut.give();
  const pid_t child = ::fork();
  if (child == 0) {
    // From here on any system call but read, write and exit kills the process.
    ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT);
    for (int i = 0; i < 100; ++i) {
      sut.take(kWithoutLimit);
      sut.give();
    }
    ::syscall(SYS_exit, 7);
  }

  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);

  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 7);
}

}  // namespace
}  // namespace zerva
