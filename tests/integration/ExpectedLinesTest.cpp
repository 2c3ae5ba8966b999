#include <gtest/gtest.h>

#include "tests/integration/ExpectedLines.h"

namespace zerva {
namespace {

TEST(ExpectedLines, AgreeWithTheSameText) { EXPECT_EQ(compareLines({"a", "b"}, "a\nb\n"), ""); }

TEST(ExpectedLines, TellWhereATextParts) {
  EXPECT_NE(compareLines({"a", "b"}, "a\nc\n").find("expected line 2: b\nwritten line 2: c"),
            std::string::npos);
}

TEST(ExpectedLines, DoNotAgreeWithALineTooMany) { EXPECT_NE(compareLines({"a"}, "a\nb\n"), ""); }

TEST(ExpectedLines, DoNotAgreeWithALineTooFew) { EXPECT_NE(compareLines({"a", "b"}, "a\n"), ""); }

TEST(ExpectedLines, WithDotsAgreeWithAnyLinesBetween) {
  EXPECT_EQ(compareLines({"a", "...", "d"}, "a\nb\nc\nd\n"), "");
}

TEST(ExpectedLines, WithDotsStillWantTheLineAfterThem) {
  EXPECT_NE(compareLines({"a", "...", "d"}, "a\nb\nc\n"), "");
}

TEST(ExpectedLines, WithANumberAgreeWithDigitsOnly) {
  EXPECT_EQ(compareLines({"id <number>."}, "id 123.\n"), "");
  EXPECT_NE(compareLines({"id <number>."}, "id x.\n"), "");
}

TEST(ExpectedLines, WithAnyAgreeWithAnyText) {
  EXPECT_EQ(compareLines({"'<any>' ends"}, "'what ever' ends\n"), "");
}

}  // namespace
}  // namespace zerva
