#include "tests/system/RelayHosts.h"

namespace zerva {
namespace {

using testing::HasSubstr;

/** One of three processes is killed; the others must get on, and it can be started again. */
class AKilledProcess : public RelayHosts, public testing::WithParamInterface<const char*> {
 protected:
  const std::string victim = GetParam();
  const std::string other = othersThan(victim)[0];
  const std::string another = othersThan(victim)[1];
};

INSTANTIATE_TEST_SUITE_P(Each, AKilledProcess, testing::Values("First", "Second", "Third"),
                         [](const auto& param) { return std::string(param.param); });

TEST_P(AKilledProcess, AtRest_TakesOnlyItsOwnChannelsAlong) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  ASSERT_NO_FATAL_FAILURE(kill(victim));
  expectCallsBetween(other, another);
  EXPECT_THAT(call({other, victim}).get(), HasSubstr("/test/" + victim + "' failed"));
  expectAllWorkAgain();
  endAll();
}

TEST_P(AKilledProcess, ThatServesACall_FailsItAtOnceAndSaysThatItEnded) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  CallEnd direct = call({victim, "hold"});
  ASSERT_NO_FATAL_FAILURE(awaitHeld(victim));
  CallEnd through = call({other, another, victim, "hold"});
  ASSERT_TRUE(host(victim).waitForOutput("held\nheld"));
  const std::string ended = process(victim) + " ended before it answered";
  ASSERT_NO_FATAL_FAILURE(kill(victim));
  EXPECT_THAT(direct.get(), HasSubstr(ended));
  EXPECT_THAT(through.get(), HasSubstr(ended));
  expectCallsBetween(other, another);
  expectAllWorkAgain();
  endAll();
}

TEST_P(AKilledProcess, ThatWaitsForAnother_LeavesItWithNobodyToAnswer) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  CallEnd through = call({other, victim, another, "hold"});
  ASSERT_NO_FATAL_FAILURE(awaitHeld(another));
  const std::string ended = process(victim) + " ended before it answered";
  ASSERT_NO_FATAL_FAILURE(kill(victim));
  EXPECT_THAT(through.get(), HasSubstr(ended));
  expectCallsBetween(other, another);
  expectAllWorkAgain();
  endAll();
}

TEST_P(AKilledProcess, ThatIsStillStarting_TakesOnlyItsOwnChannelsAlong) {
  // Its own relay is up, the next service does not come up.
  const std::string hangs = "service_instance: ST libHangingInit.so createHangingInit /h HIfc\n";
  for (const std::string name : {"First", "Second", "Third"}) {
    ASSERT_NO_FATAL_FAILURE(start(name, name == victim ? hangs : ""));
  }
  ASSERT_TRUE(host(victim).waitForErrors("init hangs"));
  expectCallsBetween(other, another);
  expectCallsBetween(victim, another);
  ASSERT_NO_FATAL_FAILURE(kill(victim));
  expectCallsBetween(other, another);
  expectAllWorkAgain();
  endAll();
}

TEST_P(AKilledProcess, ThatIsEnding_ServesNobodyAndThenTakesNothingAlong) {
  const std::string hangs = "service_instance: ST libHangingStop.so createHangingStop /h HIfc\n";
  for (const std::string name : {"First", "Second", "Third"}) {
    ASSERT_NO_FATAL_FAILURE(start(name, name == victim ? hangs : ""));
  }
  expectAllWorkAgain();
  host(victim).signal(SIGTERM);
  ASSERT_TRUE(host(victim).waitForErrors("stop hangs"));
  EXPECT_THAT(call({other, victim}).get(), HasSubstr("/test/" + victim + "' failed"));
  expectCallsBetween(other, another);
  ASSERT_NO_FATAL_FAILURE(kill(victim));
  expectCallsBetween(other, another);
  expectAllWorkAgain();
  endAll();
}

}  // namespace
}  // namespace zerva
