#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "host/notify/ManagerEnvironment.h"

namespace zerva {
namespace {

using std::chrono::microseconds;

class AManagersEnvironment : public testing::Test {
 protected:
  ~AManagersEnvironment() override { ManagerEnvironment::take(); }
};

TEST_F(AManagersEnvironment, IsTakenOutSoThatNobodyElseHasIt) {
  setenv("NOTIFY_SOCKET", "/run/notify", 1);
  setenv("WATCHDOG_USEC", "3000000", 1);
  setenv("WATCHDOG_PID", std::to_string(getpid()).c_str(), 1);
  const auto sut = ManagerEnvironment::take();
  EXPECT_EQ(sut.socket, "/run/notify");
  EXPECT_EQ(sut.watchdog, microseconds(3000000));
  for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"}) {
    EXPECT_EQ(std::getenv(name), nullptr) << name;
  }
}

TEST_F(AManagersEnvironment, IsEmptyWithoutAManager) {
  const auto sut = ManagerEnvironment::take();
  EXPECT_EQ(sut.socket, "");
  EXPECT_FALSE(sut.watchdog);
}

TEST_F(AManagersEnvironment, HasNoWatchdogThatIsForAnotherProcess) {
  setenv("WATCHDOG_USEC", "3000000", 1);
  setenv("WATCHDOG_PID", "1", 1);
  EXPECT_FALSE(ManagerEnvironment::take().watchdog);
}

TEST_F(AManagersEnvironment, HasTheWatchdogThatIsForNoProcessInParticular) {
  setenv("WATCHDOG_USEC", "1", 1);
  EXPECT_EQ(ManagerEnvironment::take().watchdog, microseconds(1));
}

TEST_F(AManagersEnvironment, HasNoWatchdogOfATimeThatIsNone) {
  for (const char* bad :
       {"0", "-5", "soon", "3s", "", "99999999999999999999", "1000000000000001"}) {
    setenv("WATCHDOG_USEC", bad, 1);
    EXPECT_FALSE(ManagerEnvironment::take().watchdog) << bad;
  }
}

}  // namespace
}  // namespace zerva
