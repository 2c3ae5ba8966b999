#include <thread>

#include "framework/CallException.h"
#include "framework/Executable.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libServiceExecutor/Drain.h"
#include "tests/support/WaitUntil.h"
#include "tests/system/SystemWorld.h"

namespace zerva {
namespace {

using testing::HasSubstr;

/** Whether so many requests are being served now. */
bool underWay(std::size_t count) { return executorsUnderWay().size() == count; }

class AStop : public testing::Test, protected SystemWorld {
 protected:
  AStop() { setReplyTimeout(std::chrono::hours(1)); }
  ~AStop() override { setReplyTimeout(before_); }

  /** Calls a relay on a thread of its own. The call must fail. */
  std::thread calling(std::vector<std::string> way) {
    Relay* const first = find("RelayIfc1");
    return std::thread(
        [first, way = std::move(way)] { EXPECT_THROW(first->pass(way), CallException); });
  }

 private:
  const std::chrono::milliseconds before_ = replyTimeout();
};

TEST_F(AStop, EndsACallUnderWayWithAnError) {
  for (const char* const keyword : {"service_instance: ST", "service_instance: MT"}) {
    start(relays(keyword, 1));
    std::thread caller = calling({"hold"});
    EXPECT_TRUE(waitUntil([] { return underWay(1); }));
    sut->shutdown();
    caller.join();
    end();
  }
}

TEST_F(AStop, EndsCallsThatWaitForEachOther) {
  for (const char* const keyword : {"service_instance: ST", "service_instance: MT"}) {
    start(relays(keyword, 4));
    std::thread caller = calling({"RelayIfc2", "RelayIfc3", "RelayIfc4", "hold"});
    EXPECT_TRUE(waitUntil([] { return underWay(4); }));
    sut->shutdown();
    caller.join();
    end();
  }
}

TEST_F(AStop, IsFollowedByErrorsInsteadOfCalls) {
  start(relays("service_instance: MT", 2));
  Relay* const known = find("RelayIfc1");
  ASSERT_NE(known, nullptr);
  sut->shutdown();
  EXPECT_THROW(known->pass({}), CallException);
  EXPECT_EQ(find("RelayIfc2"), nullptr) << "the registry is stopped too";
}

TEST_F(AStop, LeavesNoTimerRunning) {
  class Owner : public Executable {
    void init(SvcRTEContext* /*context*/) override {}
  } owner;
  start("");
  const int timer = sut->createTimer(&owner, 3600000);
  ASSERT_TRUE(sut->startTimer(timer));
  sut->shutdown();
  EXPECT_FALSE(sut->timerRunning(timer));
  EXPECT_FALSE(sut->stopTimer(timer));
}

}  // namespace
}  // namespace zerva
