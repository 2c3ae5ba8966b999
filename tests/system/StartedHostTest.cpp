#include <signal.h>

#include "tests/support/WaitUntil.h"
#include "tests/system/RelayHosts.h"

namespace zerva {
namespace {

using testing::HasSubstr;

/** The second host is started by the first, with a line of its directive file. */
class AStartedHost : public RelayHosts {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(start("First", "start_process: " + commandFor("Second") + "\n"));
    ASSERT_TRUE(waitUntil([] { return call({"First", "Second"}).get().empty(); }));
  }
};

TEST_F(AStartedHost, EndsAfterTheFirstWithCallsUnderWayBothWays) {
  CallEnd there = call({"First", "Second", "hold"});
  ASSERT_NO_FATAL_FAILURE(awaitHeld("First"));
  CallEnd back = call({"Second", "First", "hold"});
  ASSERT_TRUE(host("First").waitForOutput("held\nheld"));
  end("First");
  EXPECT_NE(there.get(), "");
  EXPECT_NE(back.get(), "");
  const std::string output = host("First").output();
  EXPECT_LT(output.find("deleted  First"), output.find("stopped  Second"));
  EXPECT_THAT(output, HasSubstr("deleted  Second"));
}

TEST_F(AStartedHost, GoesOnWhenTheOneThatStartedItIsKilled) {
  const int second = RelayCaller("Second").pass({}).at(0);
  EXPECT_NE(second, host("First").id());
  ASSERT_NO_FATAL_FAILURE(kill("First"));
  EXPECT_EQ(RelayCaller("Second").pass({}).at(0), second);
  EXPECT_THAT(call({"Second", "First"}).get(), HasSubstr("failed"));
  ::kill(second, SIGTERM);
  EXPECT_TRUE(waitUntil([this] { return host("First").survivors().empty(); }));
}

class AHostThatIsStopping : public RelayHosts {};

TEST_F(AHostThatIsStopping, EndsEveryLookUpAndStartsNoTimer) {
  for (const char* const name : {"First", "Second", "Third"}) {
    ASSERT_NO_FATAL_FAILURE(start(name));
  }
  CallEnd held = call({"Second", "hold", "Third", "Nobody"});
  ASSERT_NO_FATAL_FAILURE(awaitHeld("Second"));
  host("Second").signal(SIGTERM);
  // Found or not: it is told to stop a moment before its requests end.
  EXPECT_TRUE(host("Second").waitForErrors("after the stop: Third is")) << host("Second").errors();
  EXPECT_TRUE(host("Second").waitForErrors("after the stop: Nobody is not found"))
      << host("Second").errors();
  EXPECT_THAT(host("Second").errors(), testing::Not(HasSubstr("a timer starts")));
  EXPECT_NE(held.get(), "");
  EXPECT_EQ(host("Second").wait(), 0);
  end("Third");
  end("First");
}

}  // namespace
}  // namespace zerva
