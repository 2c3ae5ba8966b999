#include <gtest/gtest.h>
#include <stdlib.h>

#include <string>

#include "host/live/StatusWanted.h"

namespace zerva {
namespace {

class AStatus : public testing::Test {
 protected:
  AStatus() { ::unsetenv("ZERVA_STATUS"); }
  ~AStatus() override { ::unsetenv("ZERVA_STATUS"); }
};

TEST_F(AStatus, IsNotWantedWhenNobodySaysSo) {
  EXPECT_FALSE(statusWanted(false));
  EXPECT_EQ(::getenv("ZERVA_STATUS"), nullptr);
}

TEST_F(AStatus, IsWantedOfWhatIsStartedToo) {
  EXPECT_TRUE(statusWanted(true));
  EXPECT_TRUE(statusWanted(false));
  EXPECT_STREQ(::getenv("ZERVA_STATUS"), "1");
}

TEST_F(AStatus, IsNotWantedWhenTheEnvironmentSaysNo) {
  for (const char* value : {"", "0"}) {
    ::setenv("ZERVA_STATUS", value, 1);
    EXPECT_FALSE(statusWanted(false)) << value;
  }
}

}  // namespace
}  // namespace zerva
