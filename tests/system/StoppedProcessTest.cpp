#include <signal.h>

#include "tests/system/RelayHosts.h"

namespace zerva {
namespace {

using testing::HasSubstr;

class AStoppedProcess : public RelayHosts {};

TEST_F(AStoppedProcess, HoldsUpNobodyButThoseWhoWaitForIt) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  ASSERT_TRUE(host("Second").stop());
  CallEnd waiting = call({"Third", "Second"});
  expectCallsBetween("First", "Third");
  EXPECT_EQ(waiting.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  host("Second").signal(SIGCONT);
  EXPECT_EQ(waiting.get(), "");
  endAll();
}

TEST_F(AStoppedProcess, ThatIsKilled_FailsThoseWhoWaitForIt) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  ASSERT_TRUE(host("Second").stop());
  CallEnd waiting = call({"Third", "Second"});
  ASSERT_NO_FATAL_FAILURE(kill("Second"));
  EXPECT_THAT(waiting.get(), HasSubstr("failed"));
  expectAllWorkAgain();
  endAll();
}

}  // namespace
}  // namespace zerva
