#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <thread>

#include "host/live/AtOnce.h"

namespace zerva {
namespace {

using namespace std::chrono_literals;
using testing::_;
using testing::Each;
using testing::Pair;
using testing::SizeIs;

/** Notes what is done, and on how many threads. */
class WhatIsDoneAtOnce : public testing::Test {
 protected:
  void run(std::size_t count) {
    doAtOnce(count, [this](std::size_t number) {
      {
        const std::lock_guard lock(mutex);
        ++done[number];
        ++threads[std::this_thread::get_id()];
      }
      std::this_thread::sleep_for(10ms);
    });
  }

  std::mutex mutex;
  std::map<std::size_t, int> done;
  std::map<std::thread::id, int> threads;
};

TEST_F(WhatIsDoneAtOnce, IsDoneOnceEach) {
  run(20);
  EXPECT_THAT(done, SizeIs(20));
  EXPECT_THAT(done, Each(Pair(_, 1)));
  EXPECT_LT(done.rbegin()->first, 20U);
}

TEST_F(WhatIsDoneAtOnce, IsDoneOnNoMoreThreadsThanThereMayBe) {
  run(3 * kMostAtOnce);
  EXPECT_THAT(done, SizeIs(3 * kMostAtOnce));
  EXPECT_LE(threads.size(), kMostAtOnce);
  EXPECT_GT(threads.size(), 1U);
}

TEST_F(WhatIsDoneAtOnce, MayBeNothing) {
  run(0);
  EXPECT_THAT(done, SizeIs(0));
}

TEST_F(WhatIsDoneAtOnce, IsDoneAllTheSameWhereThereIsNoThread) {
  pthread_attr_t before;
  pthread_attr_t huge;
  ASSERT_EQ(pthread_getattr_default_np(&before), 0);
  ASSERT_EQ(pthread_attr_init(&huge), 0);
  // More than there is room for.
  ASSERT_EQ(pthread_attr_setstacksize(&huge, SIZE_MAX / 4 * 3), 0);
  ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
  run(5);
  pthread_setattr_default_np(&before);
  pthread_attr_destroy(&huge);
  pthread_attr_destroy(&before);
  EXPECT_THAT(done, SizeIs(5));
  EXPECT_THAT(threads, SizeIs(1));
}

}  // namespace
}  // namespace zerva
