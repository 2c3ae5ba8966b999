#include <gtest/gtest.h>

#include "host/live/TextTable.h"

namespace zerva {
namespace {

TEST(ATable, HasItsCellsBelowEachOther) {
  TextTable sut({"A", "LONG", "C"});
  sut.add({"wide one", "x", "1"});
  sut.add({"y", "", "2"});
  EXPECT_EQ(sut.text(),
            "  A         LONG  C\n"
            "  wide one  x     1\n"
            "  y               2\n");
}

TEST(ATable, HasARemarkBelowTheLineThatItIsAbout) {
  TextTable sut({"A"});
  sut.add({"one"});
  sut.remark("why");
  sut.add({"two"});
  EXPECT_EQ(sut.text(), "  A\n  one\n    why\n  two\n");
}

TEST(ATable, CountsCharactersAndNotBytes) {
  TextTable sut({"A", "B"});
  sut.add({"\xc3\xa4\xc3\xb6", "1"});
  sut.add({"xy", "2"});
  EXPECT_EQ(sut.text(), "  A   B\n  \xc3\xa4\xc3\xb6  1\n  xy  2\n");
}

TEST(APrintableText, HasNothingThatATerminalWouldDo) {
  EXPECT_EQ(printable("a\x1b[2Jb\nc\x7f \xc3\xa4"), "a?[2Jb?c? \xc3\xa4");
}

}  // namespace
}  // namespace zerva
