#include <gmock/gmock.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <deque>
#include <set>
#include <thread>

#include "framework/Threader.h"
#include "runtime/libClientUtils/ThreadSettings.h"
#include "tests/platform/ClientUtils/FunctionBody.h"
#include "tests/platform/ClientUtils/ThreadReports.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::HasSubstr;

// Instrumented stacks are larger, and a 32-bit process that is instrumented has less room.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t kMany = 200;
#else
constexpr std::size_t kMany = 2000;
#endif

class AThread : public testing::Test {
 protected:
  bool spawn(Threadable& body, const std::string& name = "a thread",
             ThreadPriority priority = THREAD_PRIORITY_NORMAL) {
    return Threader().spawn(&id, &body, name, priority, 0);
  }

  /** Runs a function on a thread of its own until its end. */
  void onThread(const std::function<void()>& function, const std::string& name = "a thread",
                ThreadPriority priority = THREAD_PRIORITY_NORMAL) {
    FunctionBody body(function);
    ASSERT_TRUE(spawn(body, name, priority));
    body.waitForThreadCompletion();
  }

  unsigned long id = 0;
};

TEST_F(AThread, RunsItsBodyOnceBesideTheOneThatStartedIt) {
  std::atomic<int> runs{0};
  const int starter = ::gettid();

  onThread([&] {
    ++runs;
    EXPECT_NE(::gettid(), starter);
  });

  EXPECT_EQ(runs, 1);
}

TEST_F(AThread, HasTheIdThatItsStartGave) {
  unsigned long own = 0;

  onThread([&] { own = static_cast<unsigned long>(pthread_self()); });

  EXPECT_NE(id, 0UL);
  EXPECT_EQ(id, own);
}

TEST_F(AThread, HasItsNameCutToWhatTheSystemHolds) {
  std::string name;
  std::string longName;

  onThread([&] { name = threadFile(::gettid(), "comm"); }, "short");
  onThread([&] { longName = threadFile(::gettid(), "comm"); }, "longer than fifteen");

  EXPECT_EQ(name, "short");
  EXPECT_EQ(longName, "longer than fif");
}

TEST_F(AThread, WithAnEmptyName_HasAnEmptyName) {
  std::string name = "not asked";

  onThread([&] { name = threadFile(::gettid(), "comm"); }, "");

  EXPECT_EQ(name, "");
}

TEST_F(AThread, OfLowPriority_RunsWhenNothingElseWantsTo) {
  int policy = -1;

  onThread([&] { policy = ::sched_getscheduler(0); }, "low", THREAD_PRIORITY_LOW);

  EXPECT_EQ(policy, SCHED_IDLE);
}

TEST_F(AThread, OfHighPriority_GetsItOrKeepsItsOwnAndIsLogged) {
  int policy = -1;
  const RecordingSink log("Threads", 3);

  onThread([&] { policy = ::sched_getscheduler(0); }, "high", THREAD_PRIORITY_HIGH);

  if (policy != SCHED_RR) {
    EXPECT_EQ(policy, ::sched_getscheduler(0));
    ASSERT_EQ(log.texts().size(), 1U);
    EXPECT_THAT(log.texts().front(), HasSubstr("'high' keeps the priority"));
  }
}

TEST_F(AThread, OfNormalPriority_IsAsTheProcessWhoeverStartedIt) {
  int policy = -1;

  std::thread([&] {
    const sched_param parameters{};
    ASSERT_EQ(::sched_setscheduler(0, SCHED_BATCH, &parameters), 0);
    onThread([&] { policy = ::sched_getscheduler(0); });
  }).join();

  EXPECT_EQ(policy, ::sched_getscheduler(0));
}

// As a service manager has it for a process of its own that is to be urgent, and no other.
TEST_F(AThread, OfNormalPriority_IsAsTheProcessWhereNothingIsHandedOn) {
  sched_param parameters{};
  parameters.sched_priority = ::sched_get_priority_min(SCHED_RR);
  const bool allowed = ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &parameters) == 0;
  int policy = -1;

  onThread([&] { policy = ::sched_getscheduler(0) & ~SCHED_RESET_ON_FORK; });

  EXPECT_EQ(policy, ::sched_getscheduler(0) & ~SCHED_RESET_ON_FORK);
  EXPECT_EQ(policy, allowed ? SCHED_RR : SCHED_OTHER);
  parameters.sched_priority = 0;
  ASSERT_EQ(::sched_setscheduler(0, SCHED_OTHER, &parameters), 0);
}

TEST_F(AThread, BlocksTheSignalsThatItsStarterBlocks) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR2);
  pthread_sigmask(SIG_BLOCK, &blocked, &before);
  sigset_t inherited;
  sigemptyset(&inherited);

  onThread([&] { pthread_sigmask(SIG_BLOCK, nullptr, &inherited); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);

  EXPECT_EQ(sigismember(&inherited, SIGUSR2), 1);
  EXPECT_EQ(sigismember(&inherited, SIGUSR1), 0);
}

TEST_F(AThread, OfABodyThatRunsAlready_IsNotMade) {
  Gate gate;
  FunctionBody body([&] { gate.wait(); });
  ASSERT_TRUE(spawn(body));
  const RecordingSink log("Threads", 2);

  EXPECT_FALSE(spawn(body, "again"));

  EXPECT_EQ(id, 0UL);
  ASSERT_EQ(log.texts().size(), 1U);
  EXPECT_THAT(log.texts().front(), HasSubstr("'again'"));
  EXPECT_THAT(log.texts().front(), HasSubstr("FunctionBody"));
  EXPECT_THAT(log.texts().front(), HasSubstr("runs already"));
  gate.open();
  body.waitForThreadCompletion();
}

TEST_F(AThread, WithoutABody_IsNotMade) {
  const RecordingSink log("Threads", 2);
  id = 17;

  EXPECT_FALSE(Threader().spawn(&id, nullptr, "empty", THREAD_PRIORITY_NORMAL, 0));

  EXPECT_EQ(id, 0UL);
  EXPECT_EQ(log.texts().size(), 1U);
}

TEST_F(AThread, ThatTheSystemHasNoRoomFor_IsNotMadeAndLogged) {
  FunctionBody body([] {});
  const RecordingSink log("Threads", 2);
  // More than half of what a 32-bit process can address, and than any machine can back.
  ThreadSettings::setDefaultStackSize(sizeof(void*) == 4 ? std::size_t{0xf0000000}
                                                         : static_cast<std::size_t>(1ULL << 55));

  EXPECT_FALSE(spawn(body));
  ThreadSettings::setDefaultStackSize(0);

  EXPECT_EQ(id, 0UL);
  ASSERT_EQ(log.texts().size(), 1U);
  EXPECT_THAT(log.texts().front(), HasSubstr("cannot be made"));
  body.waitForThreadCompletion();
}

TEST_F(AThread, MayBeStartedAgainForABodyThatHasEnded) {
  std::atomic<int> runs{0};
  FunctionBody body([&] { ++runs; });

  for (int i = 1; i <= 3; ++i) {
    // Nobody waits for the thread before; as soon as it has left the body, the next may be made.
    ASSERT_TRUE(waitUntil([&] { return spawn(body); }));
    ASSERT_TRUE(waitUntil([&] { return runs == i; }));
  }
  body.waitForThreadCompletion();

  EXPECT_EQ(runs, 3);
}

TEST_F(AThread, MayBeStartedByTheThousand) {
  Gate gate;
  std::deque<FunctionBody> bodies;
  std::set<unsigned long> ids;
  for (std::size_t i = 0; i < kMany; ++i) {
    ASSERT_TRUE(spawn(bodies.emplace_back([&] { gate.wait(); })));
    ids.insert(id);
  }

  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == kMany; }));
  EXPECT_GE(threadCount(), kMany);
  EXPECT_EQ(ids.size(), kMany);

  gate.open();
  for (auto& body : bodies) body.waitForThreadCompletion();
}

}  // namespace
}  // namespace zerva
