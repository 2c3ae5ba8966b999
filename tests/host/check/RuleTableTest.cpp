#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "host/check/RuleTable.h"
#include "tests/support/FileText.h"

namespace zerva {
namespace {

TEST(TheTableOfRules, HasEachCodeOnce) {
  std::set<std::string> seen;
  for (const Rule& sut : allRules()) EXPECT_TRUE(seen.insert(sut.code).second) << sut.code;
}

TEST(TheTableOfRules, HasCodesOfSmallLettersAndHyphens) {
  for (const Rule& sut : allRules()) {
    const std::string code = std::string("-") + sut.code + "-";
    EXPECT_EQ(code.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos) << sut.code;
    EXPECT_EQ(code.find("--"), std::string::npos) << sut.code;
  }
}

TEST(TheTableOfRules, IsTheOneOfTheDocument) {
  const std::string document = readFile(ZERVA_SOURCE_DIRECTORY "/docs/checking.md");
  std::string sut = "|---|---|---|\n";
  for (const Rule& rule : allRules()) {
    sut += std::string("| `") + rule.code + "` | " + severityName(rule.severity) + " | " +
           rule.meaning + " |\n";
  }
  sut += "\n";
  EXPECT_THAT(document, testing::HasSubstr(sut));
}

TEST(TheTableOfRules, IsListedWithALineForEach) {
  const std::string sut = describeRules();
  for (const Rule& rule : allRules()) {
    EXPECT_THAT(sut, testing::HasSubstr(std::string(severityName(rule.severity)) + " "));
    EXPECT_THAT(sut, testing::HasSubstr(" " + std::string(rule.code) + " "));
    EXPECT_THAT(sut, testing::HasSubstr(" " + std::string(rule.meaning) + "\n"));
  }
}

}  // namespace
}  // namespace zerva
