#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "runtime/libClientUtils/Futex.h"

namespace zerva {
namespace {

constexpr int kFutexHash = 78;
constexpr unsigned long kSetSlots = 1;
constexpr unsigned long kGetSlots = 2;

/** @returns how many lists the process has for threads that sleep; -1 if it shares them. */
int slots() { return ::prctl(kFutexHash, kGetSlots, 0UL, 0UL, 0UL); }

/** @returns 1 for true of a fresh process that has one thread, 0 for false; -1 if it died. */
int inOwnProcess(bool (*function)()) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(function() ? 1 : 0);
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(AProcessThatIsPreparedForManySleepers, HasMoreListsOfThemIfTheSystemKnowsSuch) {
  EXPECT_EQ(inOwnProcess([] {
              const int before = slots();
              prepareForManySleepers();
              return before < 0 ? slots() == before : slots() > 1000;
            }),
            1);
}

TEST(AProcessThatIsPreparedForManySleepers, KeepsTheListsThatItHasAlready) {
  EXPECT_EQ(inOwnProcess([] {
              ::prctl(kFutexHash, kSetSlots, 64UL, 0UL, 0UL);
              const int before = slots();
              if (before == 0) return false;
              prepareForManySleepers();
              return slots() == before;
            }),
            1);
}

}  // namespace
}  // namespace zerva
