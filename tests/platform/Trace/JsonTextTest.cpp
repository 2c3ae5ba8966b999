#include <gtest/gtest.h>

#include <string>

#include "runtime/libClientUtils/trace/JsonText.h"

namespace zerva {
namespace {

std::string json(std::string_view text) {
  std::string written;
  appendJsonText(written, text);
  return written;
}

TEST(ATextAsJson, StandsInQuotes) {
  EXPECT_EQ(json(""), "\"\"");
  EXPECT_EQ(json("/example/wind"), "\"/example/wind\"");
}

TEST(ATextAsJson, HasItsSpecialCharactersEscaped) {
  EXPECT_EQ(json("a\"b\\c\nd\te"), R"("a\"b\\c\nd\te")");
  EXPECT_EQ(json(std::string_view("\0\x1f", 2)), R"("\u0000\u001f")");
}

TEST(ATextAsJson, KeepsCharactersOfEveryLength) {
  EXPECT_EQ(json("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
            "\"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\"");
}

TEST(ATextAsJson, HasAReplacementForEachByteThatIsNoCharacter) {
  const std::string replaced = "\xEF\xBF\xBD";
  EXPECT_EQ(json("a\xFF"), "\"a" + replaced + "\"");
  EXPECT_EQ(json("\xC3"), "\"" + replaced + "\"");
  // Longer than need be, half of a pair, and beyond the last one.
  EXPECT_EQ(json("\xC0\xAF"), "\"" + replaced + replaced + "\"");
  EXPECT_EQ(json("\xED\xA0\x80"), "\"" + replaced + replaced + replaced + "\"");
  EXPECT_EQ(json("\xF4\x90\x80\x80"), "\"" + replaced + replaced + replaced + replaced + "\"");
}

}  // namespace
}  // namespace zerva
