// Each thing that can be found has a folder under cases/: `provokes.directives` has it, and
// `clean.directives` just has not. `provokes.expected` and `clean.expected` are what `zerva check`
// writes of them. A file `arguments` is there where other options are needed than the usual ones.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "host/check/RuleTable.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/FileText.h"

namespace zerva {
namespace {

const std::filesystem::path build = ZERVA_BUILD_DIRECTORY;
const std::filesystem::path cases =
    std::filesystem::path(ZERVA_SOURCE_DIRECTORY) / "tests/host/check/cases";

constexpr char usualArguments[] = "--no-libraries --ignore no-registry --ignore no-proxy-record";

std::vector<std::string> codes() {
  std::vector<std::string> codes;
  for (const Rule& rule : allRules()) codes.emplace_back(rule.code);
  return codes;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

/** What differs from build to build, by the names that stand for it in the files. */
std::vector<std::pair<std::string, std::string>> names() {
  const bool is64 = sizeof(void*) == 8;
  return {{"<plugins>", build / "plugins"},
          {"<libraries>", build / "check-libraries"},
          {"<programs>", build / "bin"},
          {"<bits>", is64 ? "64-bit" : "32-bit"},
          {"<other bits>", is64 ? "32-bit" : "64-bit"}};
}

std::string withoutNames(std::string text) {
  for (const auto& [name, meaning] : names()) replaceAll(text, name, meaning);
  return text;
}

class ACheckedFile : public testing::TestWithParam<std::string> {
 protected:
  std::filesystem::path folder() const { return cases / GetParam(); }

  std::string sut(const std::string& name) const {
    const auto file = folder() / "arguments";
    std::istringstream words(
        withoutNames(std::filesystem::exists(file) ? readFile(file) : usualArguments));
    std::vector<std::string> arguments = {"check", name + ".directives"};
    for (std::string word; words >> word;) arguments.push_back(word);
    ChildProcess program(build / "bin/zerva", arguments, {{"PATH", "bin"}}, folder());
    EXPECT_NE(program.wait().value_or(-1), -1);
    EXPECT_EQ(program.errors(), "");
    return program.output();
  }

  std::string expected(const std::string& name) const {
    return withoutNames(readFile(folder() / (name + ".expected")));
  }

  std::string code() const { return "[" + GetParam() + "]"; }
};

TEST_P(ACheckedFile, ThatHasWhatTheCodeStandsFor_IsToldSo) {
  const std::string output = sut("provokes");
  EXPECT_EQ(output, expected("provokes"));
  EXPECT_THAT(output, testing::HasSubstr(code()));
}

TEST_P(ACheckedFile, ThatJustDoesNotHaveIt_IsNot) {
  const std::string output = sut("clean");
  EXPECT_EQ(output, expected("clean"));
  EXPECT_THAT(output, testing::Not(testing::HasSubstr(code())));
}

INSTANTIATE_TEST_SUITE_P(Code, ACheckedFile, testing::ValuesIn(codes()), [](const auto& test) {
  std::string name = test.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
});

TEST(TheCases, AreThoseOfTheCodes) {
  std::vector<std::string> sut;
  for (const auto& entry : std::filesystem::directory_iterator(cases)) {
    sut.push_back(entry.path().filename());
  }
  EXPECT_THAT(sut, testing::UnorderedElementsAreArray(codes()));
}

}  // namespace
}  // namespace zerva
