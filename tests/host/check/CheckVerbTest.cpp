// `zerva check` as a whole: its words, its exit codes, and the trees of other machines.

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
#include "tests/support/Terminal.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

const fs::path build = ZERVA_BUILD_DIRECTORY;

constexpr char withError[] = "servce_info: x\n";
constexpr char withWarning[] = "just words\n";
constexpr char withNote[] = "service_info: libA.so createA /a AIfc\n";

/** The verb, run in a directory of a test's own. */
class TheVerbCheck : public testing::Test {
 protected:
  int sut(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "check");
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

TEST_F(TheVerbCheck, EndsWith0AndSaysNothingWhenNothingIsFound) {
  EXPECT_EQ(sutOf("# nothing\n"), 0);
  EXPECT_EQ(output, "");
}

TEST_F(TheVerbCheck, EndsWith1WhenThereAreErrors) { EXPECT_EQ(sutOf(withError), 1); }

TEST_F(TheVerbCheck, EndsWith0WhenThereAreOnlyWarnings) {
  EXPECT_EQ(sutOf(withWarning), 0);
  EXPECT_THAT(output, HasSubstr("1 warning\n"));
}

TEST_F(TheVerbCheck, EndsWith1WhenThereAreWarningsAndItIsStrict) {
  EXPECT_EQ(sutOf(withWarning, {"--strict"}), 1);
}

TEST_F(TheVerbCheck, EndsWith0WhenThereAreOnlyNotesAndItIsStrict) {
  EXPECT_EQ(sutOf(withNote, {"--strict"}), 0);
  EXPECT_THAT(output, HasSubstr("2 notes\n"));
}

TEST_F(TheVerbCheck, EndsWith2WithoutAFile) {
  EXPECT_EQ(sut({}), 2);
  EXPECT_THAT(errors, HasSubstr("FILE is required"));
}

TEST_F(TheVerbCheck, EndsWith2WhenAFileIsMissing_AndLooksAtTheOthers) {
  directory.write("a.directives", withError);
  EXPECT_EQ(sut({"missing.directives", "a.directives", "--no-libraries"}), 2);
  EXPECT_EQ(errors, "zerva: missing.directives: No such file or directory\n");
  EXPECT_THAT(output, HasSubstr("a.directives:1:1: error"));
}

TEST_F(TheVerbCheck, EndsWith2WhenATraceIsMissing) {
  EXPECT_EQ(sutOf(withNote, {"--trace", "missing"}), 2);
  EXPECT_EQ(errors, "zerva: missing: error: cannot be opened: No such file or directory\n");
}

TEST_F(TheVerbCheck, EndsWith2WhenWhatIsGivenForATraceIsNone) {
  const std::string text = directory.write("notes", "somebody did a lookup of AIfc\n");
  EXPECT_EQ(sutOf(withNote, {"--trace", text}), 2);
  EXPECT_THAT(errors, HasSubstr("notes:1: error: this is no line of a trace"));
  EXPECT_EQ(output, "");
}

TEST_F(TheVerbCheck, SaysSoWhenATraceIsNotComplete) {
  const std::string thread = R"("thread":{"id":1,"name":"main"})";
  directory.write("run.trace", R"({"event":"trace","version":1,"t":1,)" + thread + "}\n" +
                                   R"({"event":"lost","t":2,"events":3,)" + thread + "}\n");
  EXPECT_EQ(sutOf(withNote, {"--trace", "run.trace"}), 0);
  EXPECT_THAT(errors, HasSubstr("run.trace: 3 events are missing"));
}

/** `zerva` with standard output on a device that takes nothing. */
int withoutRoom(const std::string& words, const TempDirectory& directory, std::string& errors) {
  ChildProcess program("/bin/sh",
                       {"-c", (build / "bin/zerva").string() + " " + words + " >/dev/full"}, {},
                       directory.path());
  const int code = program.wait().value_or(-1);
  errors = program.errors();
  return code;
}

TEST_F(TheVerbCheck, EndsWith2WhenWhatItFoundCannotBePrinted) {
  directory.write("a.directives", withNote);
  EXPECT_EQ(withoutRoom("check a.directives --no-libraries", directory, errors), 2);
  EXPECT_EQ(errors, "zerva: cannot print it: No space left on device\n");
  EXPECT_EQ(withoutRoom("check --codes", directory, errors), 2);
}

// Address space is what sanitizers need much of.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(TheVerbCheck, EndsWith2ForAnUnexpectedError) {
  std::string lines;
  for (int count = 0; count < 400'000; ++count) lines += "word: a b c d e f g\n";
  directory.write("a.directives", lines);
  ChildProcess program("/bin/sh",
                       {"-c", "ulimit -v 200000; exec " + (build / "bin/zerva").string() +
                                  " check a.directives --no-libraries"},
                       {}, directory.path());
  EXPECT_EQ(program.wait().value_or(-1), 2) << "as for a file with errors";
  EXPECT_THAT(program.errors(), HasSubstr("bad_alloc"));
}
#endif

TEST_F(TheVerbCheck, EndsWith2ForACodeThatIsNone) {
  EXPECT_EQ(sutOf(withNote, {"--ignore", "nothing-at-all"}), 2);
}

TEST_F(TheVerbCheck, SaysNothingOfWhatIsIgnored) {
  EXPECT_EQ(sutOf(withError, {"--ignore", "unknown-keyword"}), 0);
  EXPECT_EQ(output, "");
}

TEST_F(TheVerbCheck, WritesWhatItFoundForPrograms) {
  EXPECT_EQ(sutOf(withError, {"--json"}), 1);
  const auto json = nlohmann::json::parse(output);
  EXPECT_EQ(json["findings"][0]["code"], "unknown-keyword");
  EXPECT_EQ(json["findings"][0]["suggestion"], "service_info");
  EXPECT_EQ(json["errors"], 1);
}

/** The lines of a text, each indented as in a document's example. */
std::string indented(const std::string& text) {
  std::string result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) result += "    " + line + "\n";
  return result;
}

TEST_F(TheVerbCheck, WritesWhatTheDocumentShows) {
  directory.write("plant.directives",
                  "# The plant\n\n\n"
                  "servce_instance: ST libPump.so createPump /plant/pump PumpIfc\n"
                  "\n\n\n\n"
                  "service_legacy: ST libClock.so createClock ClockIfc TimeIfc\n");
  EXPECT_EQ(sut({"plant.directives", "--no-libraries"}), 1);
  EXPECT_THAT(readFile(std::string(ZERVA_SOURCE_DIRECTORY) + "/docs/checking.md"),
              HasSubstr("\n    $ zerva check plant.directives\n" + indented(output) + "\n"));
}

TEST_F(TheVerbCheck, LooksForWhatIsNeededWhereTheEnvironmentSays) {
  const fs::path libraries = build / "check-libraries";
  directory.write("a.directives", "service_instance: ST " +
                                      (libraries / "libNeedsHidden.so").string() +
                                      " createNeeding /a AIfc\n");
  const auto codeWith = [&](const std::string& path) {
    ChildProcess program(build / "bin/zerva", {"check", "a.directives"},
                         {{"LD_LIBRARY_PATH", path}}, directory.path());
    return program.wait().value_or(-1);
  };
  EXPECT_EQ(codeWith(libraries), 1);
  EXPECT_EQ(codeWith(libraries / "hidden"), 0);
}

TEST_F(TheVerbCheck, ListsItsCodesWithoutAFile) {
  EXPECT_EQ(sut({"--codes"}), 0);
  EXPECT_THAT(output, HasSubstr("error    line-too-long "));
}

TEST_F(TheVerbCheck, TellsItsExitCodesInItsHelp) {
  EXPECT_EQ(sut({"--help"}), 0);
  EXPECT_THAT(output, HasSubstr("  1  errors were found, or with --strict warnings\n"));
}

TEST_F(TheVerbCheck, LooksAtEachFileForItself) {
  directory.write("a.directives", withNote);
  directory.write("b.directives", withNote);
  EXPECT_EQ(sut({"a.directives", "b.directives", "--no-libraries"}), 0);
}

TEST_F(TheVerbCheck, LooksAtFilesTogetherWhenTheyAre) {
  directory.write("a.directives", withNote);
  directory.write("b.directives", withNote);
  EXPECT_EQ(sut({"a.directives", "b.directives", "--together", "--no-libraries"}), 1);
  EXPECT_THAT(output, HasSubstr("b.directives:1:31: error: the channel '/a' is that of "
                                "a.directives:1 already"));
}

TEST_F(TheVerbCheck, FindsNothingToWarnOfInTheExamples) {
  const std::string examples = std::string(ZERVA_SOURCE_DIRECTORY) + "/examples/";
  EXPECT_EQ(sut({examples + "demo.directives", examples + "buoy.directives", "--together",
                 "--strict", "--ignore", "program-not-found", "--load"}),
            0)
      << output;
}

TEST_F(TheVerbCheck, EndsALibraryThatHangs) {
  directory.write("a.directives", "service_info: libHanging.so createHanging /a AIfc\n");
  EXPECT_EQ(sut({"a.directives", "--lib-dir", build / "check-libraries", "--load", "--load-timeout",
                 "0.5"}),
            1);
  EXPECT_THAT(output,
              HasSubstr("it was not over after 0.500 s while it was opened. [load-failed]"));
}

TEST_F(TheVerbCheck, DoesNotRunLibrariesUnlessItIsTold) {
  directory.write("a.directives", "service_info: libHanging.so createHanging /a AIfc\n");
  EXPECT_EQ(sut({"a.directives", "--lib-dir", build / "check-libraries"}), 0);
}

TEST_F(TheVerbCheck, DoesNotLoadFromAnotherMachinesTree) {
  EXPECT_EQ(sutOf(withNote, {"--load"}), 2);
  directory.write("a.directives", withNote);
  EXPECT_EQ(sut({"a.directives", "--sysroot", ".", "--load"}), 2);
}

TEST_F(TheVerbCheck, ChecksTheTreeOfAMachineOfAnotherWordSize) {
  fs::create_directories(directory.path() / "tree/usr/bin");
  fs::create_directories(directory.path() / "tree/opt/plant");
  const fs::path other = build / "plugins/libWrongWordSize.so";
  // What stands for the host there: only for which machine it is counts.
  fs::copy_file(other, directory.path() / "tree/usr/bin/zerva");
  fs::copy_file(other, directory.path() / "tree/opt/plant/libThere.so");
  fs::copy_file(build / "plugins/libPlain.so", directory.path() / "tree/opt/plant/libHere.so");
  directory.write("a.directives",
                  "service_info: libThere.so createPlain /a AIfc\n"
                  "service_info: /opt/plant/libHere.so createPlain /b BIfc\n");
  EXPECT_EQ(sut({"a.directives", "--sysroot", "tree", "--lib-dir", "/opt/plant"}), 1);
  EXPECT_THAT(output, Not(HasSubstr("'libThere.so' is")));
  EXPECT_THAT(output, HasSubstr("a.directives:2:15: error: the library '/opt/plant/libHere.so' is "
                                "for "));
}

/** Everything that this build's host is started with, in a tree as on a target. */
void installHost(const fs::path& tree) {
  fs::create_directories(tree / "usr/bin");
  fs::create_directories(tree / "usr/lib");
  fs::copy_file(build / "bin/zerva", tree / "usr/bin/zerva");
  for (const auto& entry : fs::directory_iterator(build / "lib")) {
    if (entry.path().extension() == ".so") {
      fs::create_symlink(entry.path(), tree / "usr/lib" / entry.path().filename());
    }
  }
}

// The links lead to nowhere in the tree, as those of a tree that was copied in a hurry.
TEST_F(TheVerbCheck, DoesNotLeaveATreeByItsLinks) {
  installHost(directory.path() / "tree");
  directory.write("a.directives", "service_info: libServiceRegistry.so create /a AIfc\n");
  EXPECT_EQ(sut({"a.directives", "--sysroot", "tree"}), 1);
  EXPECT_THAT(output, HasSubstr("[library-not-found]"));
}

TEST_F(TheVerbCheck, BelievesWhatItIsToldOfTheMachine) {
  fs::create_directories(directory.path() / "tree");
  fs::copy_file(build / "plugins/libPlain.so", directory.path() / "tree/libHere.so");
  directory.write("a.directives", "service_info: /libHere.so createPlain /a AIfc\n");
  EXPECT_EQ(sut({"a.directives", "--sysroot", "tree", "--machine", "aarch64"}), 1);
  EXPECT_THAT(output, HasSubstr("and the host for 64-bit ARM. [library-wrong-machine]"));
}

TEST_F(TheVerbCheck, ShowsTheLineAndAMarkOnATerminal) {
  const std::string file = directory.write("a.directives", withError);
  const Shown sut =
      runOnATerminal((build / "bin/zerva").string() + " check " + file + " --no-libraries");
  EXPECT_EQ(sut.code, 1);
  EXPECT_THAT(sut.text, HasSubstr("\r\n    servce_info: x\r\n    \033[31m^~~~~~~~~~~\033[0m\r\n"));
}

TEST_F(TheVerbCheck, ShowsNoLineElsewhere) {
  sutOf(withError);
  EXPECT_THAT(output, Not(HasSubstr("^")));
}

}  // namespace
}  // namespace zerva
