#include <gtest/gtest.h>

#include "host/explain/Words.h"

namespace zerva {
namespace {

TEST(Words, AreListedAsInASentence) {
  EXPECT_EQ(listed({}), "");
  EXPECT_EQ(listed({"A"}), "A");
  EXPECT_EQ(listed({"A", "B"}), "A and B");
  EXPECT_EQ(listed({"A", "B", "C"}), "A, B and C");
}

TEST(Words, BeginASentenceWithACapitalLetter) {
  EXPECT_EQ(capitalised("opens it"), "Opens it");
  EXPECT_EQ(capitalised("/path is opened"), "/path is opened");
  EXPECT_EQ(capitalised(""), "");
}

TEST(Words, AreOfOneThingOrOfSeveral) {
  EXPECT_EQ(counted(0, "line"), "0 lines");
  EXPECT_EQ(counted(1, "line"), "1 line");
  EXPECT_EQ(counted(2, "line"), "2 lines");
}

}  // namespace
}  // namespace zerva
