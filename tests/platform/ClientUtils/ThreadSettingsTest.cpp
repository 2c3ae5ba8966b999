#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include "framework/Threader.h"
#include "runtime/libClientUtils/ThreadSettings.h"
#include "tests/platform/ClientUtils/FunctionBody.h"

namespace zerva {
namespace {

constexpr int kKilobyte = 1024;

class TheStackOfAThread : public testing::Test {
 protected:
  ~TheStackOfAThread() override { ThreadSettings::setDefaultStackSize(0); }

  /** What a thread really gets that asks for so much. */
  static std::size_t sizeOnThread(int requested) {
    std::size_t size = 0;
    FunctionBody body([&] {
      pthread_attr_t attributes;
      pthread_getattr_np(pthread_self(), &attributes);
      pthread_attr_getstacksize(&attributes, &size);
      pthread_attr_destroy(&attributes);
    });
    Threader().spawn(nullptr, &body, "stack", THREAD_PRIORITY_NORMAL, requested);
    body.waitForThreadCompletion();
    return size;
  }
};

TEST_F(TheStackOfAThread, IsSmallAtFirst) {
  EXPECT_EQ(ThreadSettings::defaultStackSize(), 256U * kKilobyte);
  EXPECT_EQ(sizeOnThread(0), ThreadSettings::stackSize(256 * kKilobyte));
}

TEST_F(TheStackOfAThread, IsWhatTheDefaultWasSetTo) {
  ThreadSettings::setDefaultStackSize(512 * kKilobyte);

  EXPECT_EQ(ThreadSettings::defaultStackSize(), 512U * kKilobyte);
  EXPECT_EQ(sizeOnThread(0), ThreadSettings::stackSize(512 * kKilobyte));
}

TEST_F(TheStackOfAThread, IsWhatTheThreadWasStartedWith) {
  EXPECT_EQ(sizeOnThread(1024 * kKilobyte), ThreadSettings::stackSize(1024 * kKilobyte));
}

TEST_F(TheStackOfAThread, IsTheDefaultForASizeBelowZero) {
  EXPECT_EQ(sizeOnThread(-1), sizeOnThread(0));
}

TEST_F(TheStackOfAThread, IsNeverLessThanTheSystemAsksFor) {
  EXPECT_GE(sizeOnThread(1), static_cast<std::size_t>(::sysconf(_SC_THREAD_STACK_MIN)));
}

TEST_F(TheStackOfAThread, IsWholePages) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

  EXPECT_EQ(ThreadSettings::stackSize(100 * kKilobyte + 1) % page, 0U);
  EXPECT_GT(ThreadSettings::stackSize(100 * kKilobyte + 1), 100U * kKilobyte);
}

}  // namespace
}  // namespace zerva
