// What `zerva explain` says of whole files. Each folder under cases/ has a directive file
// `plant.directives`, the words behind the verb in `arguments`, and what is written in `expected`,
// with the exit code at its end.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;

const fs::path build = ZERVA_BUILD_DIRECTORY;
const fs::path cases = fs::path(ZERVA_SOURCE_DIRECTORY) / "tests/host/explain/cases";

/** What differs from build to build, by the names that stand for it in the files. */
std::string withoutNames(std::string text) {
  const bool is64 = sizeof(void*) == 8;
  const std::vector<std::pair<std::string, std::string>> names = {
      {"<plugins>", build / "plugins"},
      {"<libraries>", build / "check-libraries"},
      {"<lib>", build / "lib"},
      {"<bits>", is64 ? "64-bit" : "32-bit"},
      {"<other bits>", is64 ? "32-bit" : "64-bit"}};
  for (const auto& [name, meaning] : names) {
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos;) {
      text.replace(at, name.size(), meaning);
      at += meaning.size();
    }
  }
  return text;
}

std::vector<std::string> caseNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(cases)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

class AnExplainedCase : public testing::TestWithParam<std::string> {
 protected:
  fs::path folder() const { return cases / GetParam(); }

  /** @returns what is written for the case, and the exit code. */
  std::string sut() const {
    const TempDirectory directory;
    fs::copy(folder(), directory.path(), fs::copy_options::recursive);
    const std::string file = readFile(folder() / "plant.directives");
    directory.write("plant.directives", withoutNames(file));
    std::istringstream words(withoutNames(readFile(folder() / "arguments")));
    std::vector<std::string> arguments = {"explain"};
    for (std::string word; words >> word;) arguments.push_back(word);
    ChildProcess program(build / "bin/zerva", arguments, {{"PATH", "bin"}}, directory.path());
    const int code = program.wait().value_or(-1);
    EXPECT_EQ(program.errors(), "");
    return program.output() + "exit code " + std::to_string(code) + "\n";
  }
};

TEST_P(AnExplainedCase, IsToldAsExpected) {
  EXPECT_EQ(sut(), withoutNames(readFile(folder() / "expected")));
}

INSTANTIATE_TEST_SUITE_P(File, AnExplainedCase, testing::ValuesIn(caseNames()),
                         [](const auto& test) {
                           std::string name = test.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

/** The configurator's sources in one text, with literals that follow each other joined. */
std::string configuratorsTexts() {
  std::string all;
  for (const auto& entry :
       fs::recursive_directory_iterator(fs::path(ZERVA_SOURCE_DIRECTORY) / "src")) {
    if (entry.is_regular_file()) all += readFile(entry.path());
  }
  std::string joined;
  for (std::size_t at = 0; at < all.size(); ++at) {
    const std::size_t next = all.find_first_not_of(" \n", at + 1);
    const bool split = all[at] == '"' && next != std::string::npos && all[next] == '"';
    if (split) at = next;
    if (!split) joined += all[at];
  }
  return joined;
}

// Whoever looks for a quoted text in the log has to find it there.
TEST(TheCases, QuoteTheLogAsTheConfiguratorWritesIt) {
  const std::string texts = configuratorsTexts();
  std::size_t found = 0;
  for (const std::string& name : caseNames()) {
    if (readFile(cases / name / "arguments").find("--json") != std::string::npos) continue;
    std::istringstream parts(readFile(cases / name / "expected"));
    std::string part;
    for (bool quoted = false; std::getline(parts, part, '"'); quoted = !quoted) {
      if (!quoted) continue;
      ++found;
      EXPECT_NE(texts.find(part), std::string::npos) << name << ": " << part;
    }
  }
  EXPECT_GT(found, 0U);
}

}  // namespace
}  // namespace zerva
