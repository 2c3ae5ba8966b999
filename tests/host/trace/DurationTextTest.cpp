#include <gtest/gtest.h>

#include "host/trace/DurationText.h"

namespace zerva {
namespace {

TEST(ADurationForPeople, HasThreeDigitsAndTheUnitThatFits) {
  EXPECT_EQ(durationText(0), "0 ns");
  EXPECT_EQ(durationText(999), "999 ns");
  EXPECT_EQ(durationText(1000), "1.00 us");
  EXPECT_EQ(durationText(12345), "12.3 us");
  EXPECT_EQ(durationText(123456), "123 us");
  EXPECT_EQ(durationText(1234567), "1.23 ms");
  EXPECT_EQ(durationText(45000000000), "45.0 s");
}

TEST(ADurationForPeople, HasTheLargerUnitWhenItIsRoundedUpToIt) {
  EXPECT_EQ(durationText(999999), "1.00 ms");
}

TEST(ADurationForPeople, MayBeNegative) { EXPECT_EQ(durationText(-1500000), "-1.50 ms"); }

}  // namespace
}  // namespace zerva
