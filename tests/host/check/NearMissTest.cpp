#include <gtest/gtest.h>

#include <string>

#include "host/check/NearMiss.h"

namespace zerva {
namespace {

TEST(TheEditDistance, IsNothingForTheSameText) { EXPECT_EQ(editDistance("abc", "abc"), 0U); }

TEST(TheEditDistance, IsOneForACharacterThatIsMissing) {
  EXPECT_EQ(editDistance("abc", "ac"), 1U);
  EXPECT_EQ(editDistance("ac", "abc"), 1U);
}

TEST(TheEditDistance, IsOneForACharacterThatIsReplaced) {
  EXPECT_EQ(editDistance("abc", "axc"), 1U);
}

TEST(TheEditDistance, IsOneForNeighboursThatAreExchanged) {
  EXPECT_EQ(editDistance("abc", "acb"), 1U);
}

TEST(TheEditDistance, DoesNotCountCapitalLetters) { EXPECT_EQ(editDistance("AbC", "aBc"), 0U); }

TEST(TheEditDistance, ToNothingIsTheLength) {
  EXPECT_EQ(editDistance("", "abc"), 3U);
  EXPECT_EQ(editDistance("abc", ""), 3U);
}

TEST(ANearMiss, IsTheNearestName) {
  EXPECT_EQ(nearMiss("service_inf", {"service_legacy", "service_info", "service_instance"}),
            "service_info");
}

TEST(ANearMiss, IsNeverTheTextItself) { EXPECT_EQ(nearMiss("start", {"start"}), ""); }

TEST(ANearMiss, IsOneThatDiffersInCapitalLettersOnly) { EXPECT_EQ(nearMiss("mt", {"MT"}), "MT"); }

TEST(ANearMiss, IsNotGuessedForShortTexts) { EXPECT_EQ(nearMiss("abc", {"abd"}), ""); }

TEST(ANearMiss, IsNotFartherOffThanAQuarterOfTheLength) {
  EXPECT_EQ(nearMiss("abcdefgh", {"abcdefxy"}), "abcdefxy");
  EXPECT_EQ(nearMiss("abcdefgh", {"abcdexyz"}), "");
}

TEST(ANearMiss, IsNeverFartherOffThanThree) {
  EXPECT_EQ(nearMiss("abcdefghijklmnopqrst", {"abcdefghijklmnopwxyz"}), "");
}

TEST(ANearMiss, OfAnEmptyTextIsNothing) { EXPECT_EQ(nearMiss("", {"a"}), ""); }

TEST(ANearMiss, OfAnEndlessTextIsNotLookedFor) {
  const std::string text(100000, 'x');
  EXPECT_EQ(nearMiss(text, {text + "y"}), "");
}

}  // namespace
}  // namespace zerva
