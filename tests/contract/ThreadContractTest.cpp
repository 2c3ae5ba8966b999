#include <atomic>

#include "framework/Threadable.h"
#include "framework/Threader.h"
#include "tests/contract/ContractTest.h"

namespace {

class AThread : public ContractTest {
 protected:
  class Body : public Threadable {
   public:
    void run() override { ++runs; }
    std::atomic<int> runs{0};
  };
};

TEST_F(AThread, RunsItsBodyOnce) {
  Body body;
  unsigned long threadId = 0;
  EXPECT_TRUE(Threader().spawn(&threadId, &body, "", THREAD_PRIORITY_NORMAL, 0));
  EXPECT_NE(threadId, 0U);
  EXPECT_TRUE(zerva::contract::settle([&] { return body.runs == 1; }));
  body.waitForThreadCompletion();
  EXPECT_EQ(body.runs, 1);
}

TEST_F(AThread, MayBeWaitedForAgainAndWhenItNeverRan) {
  Body never;
  never.waitForThreadCompletion();
  Body body;
  unsigned long threadId = 0;
  Threader().spawn(&threadId, &body, "name", THREAD_PRIORITY_NORMAL, 0);
  EXPECT_TRUE(zerva::contract::settle([&] { return body.runs == 1; }));
  body.waitForThreadCompletion();
  body.waitForThreadCompletion();
}

}  // namespace
