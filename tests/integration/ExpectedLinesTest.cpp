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

TEST(ExpectedLines, WithDotsTakeAsManyLinesAsTheRestLeavesThem) {
  EXPECT_EQ(compareLines({"...", "a", "b", "...", "c"}, "a\nx\na\nb\nc\nc\n"), "");
  EXPECT_NE(compareLines({"...", "a", "b", "...", "c"}, "a\nb\nc\nx\n"), "");
}

// Tried one way after the other, these took longer than anybody waits.
TEST(ExpectedLines, WithManyDotsAreQuicklyFoundToDiffer) {
  std::vector<std::string> expected;
  std::string written;
  for (int line = 0; line < 100; ++line) {
    expected.insert(expected.end(), {"...", "a"});
    written += "a\na\n";
  }
  expected.emplace_back("b");
  EXPECT_NE(compareLines(expected, written), "");
}

TEST(ExpectedLines, AreFoundAmongOthers) {
  EXPECT_EQ(lookForLines({"a", "b"}, "x\na\ny\nb\nz\n"), "");
  EXPECT_EQ(lookForLines({"a", "b"}, "a\nb\n"), "");
}

TEST(ExpectedLines, AreNotFoundInAnotherOrder) {
  EXPECT_EQ(lookForLines({"a", "b"}, "b\na\n").rfind("missing: b\n", 0), 0U);
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
