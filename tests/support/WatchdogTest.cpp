#include <sys/resource.h>

#include <cstdlib>

#include "tests/support/Barrier.h"
#include "tests/support/Watchdog.h"

namespace zerva {
namespace {

using testing::AllOf;
using testing::ExitedWithCode;
using testing::HasSubstr;
using testing::Not;

TEST(AWatchdog, WhoseTimeIsOver_EndsTheProgramAndNamesWhatHangsAndItsThreads) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Watchdog sut;
        sut.set("the slow one", std::chrono::milliseconds{1});
        Gate never;
        never.wait();
      },
      ExitedWithCode(Watchdog::exitCode),
      AllOf(HasSubstr("watchdog: the slow one hangs"), HasSubstr("\"test-watchdog\""),
            HasSubstr("support_test(")));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

void useUpTheMemory() {
  rlimit space{};
  getrlimit(RLIMIT_AS, &space);
  space.rlim_cur = 0;
  setrlimit(RLIMIT_AS, &space);
  for (std::size_t size = std::size_t{1} << 20; size > 0; size /= 2) {
    while (std::malloc(size) != nullptr) {
    }
  }
}

// The sanitizers end a program that gets no memory.
TEST(AWatchdog, WithoutAddressSpace_TellsOfTheThreadsNevertheless) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Watchdog sut;
        useUpTheMemory();
        sut.set("poor", std::chrono::milliseconds{1});
        Gate never;
        never.wait();
      },
      ExitedWithCode(Watchdog::exitCode),
      AllOf(HasSubstr("watchdog: poor hangs"), HasSubstr("\"test-watchdog\""),
            HasSubstr("support_test(")));
}

#endif

TEST(AWatchdog, Released_EndsNothing) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Watchdog sut;
        sut.set("the released one", std::chrono::milliseconds{50});
        sut.release();
        Watchdog later;
        later.set("the later one", std::chrono::milliseconds{100});
        Gate never;
        never.wait();
      },
      ExitedWithCode(Watchdog::exitCode),
      AllOf(HasSubstr("the later one"), Not(HasSubstr("the released one"))));
}

}  // namespace
}  // namespace zerva
