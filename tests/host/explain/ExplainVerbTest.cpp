// `zerva explain` as a whole: its words, its exit codes, and what the document shows of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path build = ZERVA_BUILD_DIRECTORY;
const fs::path source = ZERVA_SOURCE_DIRECTORY;

const std::string good = "service_info: libA.so createA /a AIfc\n";

/** The verb, run in a directory of a test's own. */
class TheVerbExplain : public testing::Test {
 protected:
  int sut(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "explain");
    ChildProcess program(build / "bin/zerva", arguments, {}, directory.path());
    const int code = program.wait().value_or(-1);
    output = program.output();
    errors = program.errors();
    return code;
  }
  int sutOf(const std::string& text, std::vector<std::string> arguments = {}) {
    directory.write("a.directives", text);
    arguments.insert(arguments.begin(), {"a.directives", "--no-libraries"});
    return sut(arguments);
  }

  const TempDirectory directory;
  std::string output;
  std::string errors;
};

TEST_F(TheVerbExplain, EndsWith0WhenEachLineDoesWhatItAsksFor) {
  EXPECT_EQ(sutOf(good), 0);
  EXPECT_THAT(output, HasSubstr("a.directives:1: prepares the lazy service AIfc.\n"));
  EXPECT_EQ(errors, "");
}

TEST_F(TheVerbExplain, EndsWith2WhenItCannotBePrinted) {
  directory.write("a.directives", good);
  ChildProcess program(
      "/bin/sh",
      {"-c", (build / "bin/zerva").string() + " explain a.directives --no-libraries >/dev/full"},
      {}, directory.path());
  EXPECT_EQ(program.wait().value_or(-1), 2);
  EXPECT_EQ(program.errors(), "zerva: cannot print it: No space left on device\n");
}

TEST_F(TheVerbExplain, EndsWith1WhenALineDoesNot) {
  EXPECT_EQ(sutOf(good + "servce_info: a\n"), 1);
}

TEST_F(TheVerbExplain, EndsWith1WhenALineIsNotRead) {
  EXPECT_EQ(sutOf("start_process: MT a\n" + good, {"2"}), 1);
  EXPECT_EQ(output, "a.directives:2: is not read: line 1 ends the start.\n");
}

TEST_F(TheVerbExplain, EndsWith0WhenOnlyOtherLinesDoNotDoWhatTheyAskFor) {
  EXPECT_EQ(sutOf(good + "servce_info: a\n", {"1"}), 0);
  EXPECT_EQ(sutOf(good + "servce_info: a\n", {"AIfc"}), 0);
}

TEST_F(TheVerbExplain, EndsWith2WithoutAFile) {
  EXPECT_EQ(sut({}), 2);
  EXPECT_THAT(errors, HasSubstr("FILE is required"));
}

TEST_F(TheVerbExplain, EndsWith2WhenTheFileIsMissing) {
  EXPECT_EQ(sut({"missing.directives"}), 2);
  EXPECT_EQ(errors, "zerva: missing.directives: No such file or directory\n");
  EXPECT_EQ(output, "");
}

TEST_F(TheVerbExplain, EndsWith2WhenTheFileIsNone) {
  EXPECT_EQ(sut({"."}), 2);
  EXPECT_EQ(errors, "zerva: .: this is a directory; only a regular file can be read.\n");
}

TEST_F(TheVerbExplain, EndsWith2WhenThereIsNoSuchLineOrName) {
  EXPECT_EQ(sutOf(good, {"2"}), 2);
  EXPECT_EQ(errors, "zerva: a.directives has 1 line, and no line 2.\n");
  EXPECT_EQ(sutOf(good, {"BIfc"}), 2);
  EXPECT_EQ(errors, "zerva: nothing in a.directives is called 'BIfc'. Did you mean 'AIfc'?\n");
}

TEST_F(TheVerbExplain, EndsWith2ForAThirdWord) { EXPECT_EQ(sutOf(good, {"1", "2"}), 2); }

TEST_F(TheVerbExplain, EndsWith2ForAnOptionThatItDoesNotHave) {
  EXPECT_EQ(sutOf(good, {"--strict"}), 2);
}

TEST_F(TheVerbExplain, TellsItsExitCodesInItsHelp) {
  EXPECT_EQ(sut({"--help"}), 0);
  EXPECT_THAT(output, HasSubstr("  0  each line that was explained does what it asks for\n"));
  EXPECT_THAT(output, HasSubstr("\n  1  one of them does not"));
  EXPECT_THAT(output, HasSubstr("\n  2  nothing was explained"));
}

TEST_F(TheVerbExplain, ExplainsAnEmptyFile) {
  EXPECT_EQ(sutOf(""), 0);
  EXPECT_EQ(output, "No service comes up.\n");
}

TEST_F(TheVerbExplain, WritesForPrograms) {
  EXPECT_EQ(sutOf(good, {"--json"}), 0);
  EXPECT_EQ(nlohmann::json::parse(output)["lines"][0]["channel"], "/a");
}

TEST_F(TheVerbExplain, FindsLibrariesWhereARunDoes) {
  directory.write("a.directives",
                  "service_info: libServiceRegistry.so createServiceRegistry /a A\n");
  EXPECT_EQ(sut({"a.directives"}), 0);
  EXPECT_THAT(output, HasSubstr("opens " + (build / "lib/libServiceRegistry.so").string() +
                                " and calls createServiceRegistry"));
}

TEST_F(TheVerbExplain, FindsLibrariesOfAnotherMachine) {
  fs::create_directories(directory.path() / "tree/opt/plant");
  fs::copy_file(build / "plugins/libPlain.so", directory.path() / "tree/opt/plant/libPlain.so");
  directory.write("a.directives", "service_info: libPlain.so createPlain /a AIfc\n");
  // What the host has loaded there is not known, since there is none.
  sut({"a.directives", "--sysroot", "tree", "--lib-dir", "/opt/plant", "--json"});
  EXPECT_EQ(nlohmann::json::parse(output)["lines"][0]["path"], "/opt/plant/libPlain.so");
}

/** The lines of a text, each indented as in a document's example. */
std::string indented(const std::string& text) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) result += "    " + line + "\n";
  return result;
}

TEST_F(TheVerbExplain, WritesWhatTheDocumentShows) {
  fs::create_directories(directory.path() / "lib");
  for (const char* name : {"libServiceRegistry.so", "libExampleWind.so", "libExampleWindAccess.so",
                           "libExampleForecast.so"}) {
    fs::copy_file(build / "lib" / name, directory.path() / "lib" / name);
  }
  const std::string document = readFile(source / "docs/explaining.md");
  const std::string begin = "<!-- station.directives -->\n```\n";
  const std::size_t at = document.find(begin);
  ASSERT_NE(at, std::string::npos);
  const std::size_t text = at + begin.size();
  directory.write("station.directives", document.substr(text, document.find("```\n", text) - text));
  EXPECT_EQ(sut({"--lib-dir", "lib", "station.directives"}), 1);
  EXPECT_THAT(document, HasSubstr("\n    $ zerva explain --lib-dir lib station.directives\n" +
                                  indented(output) + "\n"));
  EXPECT_EQ(sut({"--lib-dir", "lib", "station.directives", "/example/wind"}), 0);
  EXPECT_THAT(document,
              HasSubstr("\n    $ zerva explain --lib-dir lib station.directives /example/wind\n" +
                        indented(output) + "\n"));
}

}  // namespace
}  // namespace zerva
