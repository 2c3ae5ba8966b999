#include <signal.h>

#include "tests/platform/RecordingSink.h"
#include "tests/support/WaitUntil.h"
#include "tests/system/RelayHosts.h"
#include "tests/system/SystemWorld.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::SizeIs;

class ARegistryOfAnotherProcess : public RelayHosts {};

TEST_F(ARegistryOfAnotherProcess, InEachSetting_BringsHostsTogether) {
  for (const char* const keyword :
       {"service_instance: MT", "service_instance: ST", "service_info: MT", "service_info: ST"}) {
    registry = keyword;
    ASSERT_NO_FATAL_FAILURE(startAll()) << keyword;
    endAll();
  }
}

TEST_F(ARegistryOfAnotherProcess, IsWaitedForUntilItIsThere) {
  launch("Second");
  ASSERT_TRUE(host("Second").waitForOutput("waits for channel /zerva/serviceregistry"));
  ASSERT_NO_FATAL_FAILURE(start("First"));
  ASSERT_TRUE(host("Second").waitForOutput("up       Second"));
  expectCallsBetween("First", "Second");
  end("Second");
  end("First");
}

TEST_F(ARegistryOfAnotherProcess, ForgetsAKilledService) {
  for (const char* const name : {"First", "Second", "Third"}) {
    ASSERT_NO_FATAL_FAILURE(start(name));
  }
  ASSERT_NO_FATAL_FAILURE(kill("Second"));
  EXPECT_THAT(call({"Third", "Second"}).get(), HasSubstr("nobody is Second"));
  ASSERT_NO_FATAL_FAILURE(start("Second"));
  EXPECT_EQ(call({"Third", "Second"}).get(), "");
  endAll();
}

// Its proxy throws nothing, so what comes up goes on coming up.
TEST_F(ARegistryOfAnotherProcess, ThatIsKilled_EndsNoBringUp) {
  ASSERT_NO_FATAL_FAILURE(start("First"));
  SystemWorld local;
  local.start(SystemWorld::relay("service_instance: MT", "RelayIfc1"), "");
  EXPECT_THAT(local.find("RelayIfc1")->pass({"First"}), SizeIs(2));
  ASSERT_NO_FATAL_FAILURE(kill("First"));
  const RecordingSink log("Service Registry");
  local.process("service_instance: MT libRelay.so createRelay /test/RelayIfc2 RelayIfc2\n");
  EXPECT_THAT(log.texts(), Contains(HasSubstr("the registry was not told: ")));
  EXPECT_THAT(RelayCaller("RelayIfc1").pass({}), SizeIs(1));
  EXPECT_TRUE(local.channel.isServed("/test/RelayIfc2"));
  EXPECT_EQ(local.find("RelayIfc2"), nullptr);
}

}  // namespace
}  // namespace zerva
