#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
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
    EXPECT_TRUE(std::regex_match(sut.code, std::regex("[a-z]+(-[a-z]+)*"))) << sut.code;
  }
}

TEST(TheTableOfRules, IsTheOneOfTheDocument) {
  const std::string document = readFile(std::string(ZERVA_SOURCE_DIRECTORY) + "/docs/checking.md");
  std::string sut;
  for (const Rule& rule : allRules()) {
    sut += std::string("| `") + rule.code + "` | " + severityName(rule.severity) + " | " +
           rule.meaning + " |\n";
  }
  EXPECT_THAT(document, testing::HasSubstr("|---|---|---|\n" + sut + "\n"));
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
