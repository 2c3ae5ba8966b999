#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "host/CommandLine.h"

namespace zerva {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

Wanted read(std::vector<const char*> words) {
  words.insert(words.begin(), "zerva");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  auto wanted = readCommandLine(static_cast<int>(words.size()), words.data());
  testing::internal::GetCapturedStdout();
  testing::internal::GetCapturedStderr();
  return wanted;
}

RunOptions options(const std::vector<const char*>& words) {
  return std::get<RunOptions>(read(words));
}

ExitCode code(const std::vector<const char*>& words) { return std::get<ExitCode>(read(words)); }

TEST(TheCommandLine, TakesAFileAlone) {
  const RunOptions sut = options({"run", "a.directives"});
  EXPECT_EQ(sut.file, "a.directives");
  EXPECT_EQ(sut.version, "");
  EXPECT_FALSE(sut.duration);
  EXPECT_TRUE(sut.check);
  EXPECT_EQ(sut.stopTimeout, milliseconds(10000));
  EXPECT_FALSE(sut.replyTimeout);
}

TEST(TheCommandLine, TakesTheVersionThatAHostAppends) {
  EXPECT_EQ(options({"run", "--no-check", "a", "0.1.0"}).version, "0.1.0");
}

TEST(TheCommandLine, TakesTheBusAndTheChannelsToWaitFor) {
  const RunOptions sut = options({"run", "a", "--bus", "/run/bus", "--await", "/one", "--await",
                                  "/a=b, with blanks=1.5", "--await", "/three=0"});
  EXPECT_EQ(sut.bus, "/run/bus");
  ASSERT_EQ(sut.awaited.size(), 3U);
  EXPECT_EQ(sut.awaited[0].name, "/one");
  EXPECT_EQ(sut.awaited[0].longest, milliseconds(30000));
  EXPECT_EQ(sut.awaited[1].name, "/a=b, with blanks");
  EXPECT_EQ(sut.awaited[1].longest, milliseconds(1500));
  EXPECT_EQ(sut.awaited[2].longest, milliseconds(0));
}

TEST(TheCommandLine, TakesNoBusAndNothingToWaitForWhenNoneIsTold) {
  EXPECT_EQ(options({"run", "a"}).bus, "");
  EXPECT_TRUE(options({"run", "a"}).awaited.empty());
}

// A started host gets its version as one more word. An option in front of the file, of those that
// may come again, took the file as well, and the version became the file.
TEST(TheCommandLine, TakesOneWordForAnOptionThatMayComeAgain) {
  for (const char* option : {"--await", "--lib-dir", "--log"}) {
    const RunOptions sut = options({"run", option, "4", "services.directives", "0.1.0"});
    EXPECT_EQ(sut.file, "services.directives") << option;
    EXPECT_EQ(sut.version, "0.1.0") << option;
    EXPECT_EQ(sut.awaited.size() + sut.libraryDirectories.size() + sut.logLevels.size(), 1U);
  }
}

TEST(TheCommandLine, RefusesToWaitForWhatIsNoChannelOrNoTime) {
  for (const char* text : {"", "=1", "/a=", "/a=x", "/a=-1", "/a=inf"}) {
    EXPECT_EQ(code({"run", "a", "--await", text}), ExitCode::Usage) << text;
  }
}

TEST(TheCommandLine, TakesFractionsOfSeconds) {
  const RunOptions sut =
      options({"run", "a", "--for", "1.25", "--stop-timeout", "0", "--reply-timeout", ".5"});
  EXPECT_EQ(sut.duration, milliseconds(1250));
  EXPECT_EQ(sut.stopTimeout, milliseconds(0));
  EXPECT_EQ(sut.replyTimeout, milliseconds(500));
}

TEST(TheCommandLine, RefusesWhatIsNoTime) {
  for (const char* text : {"-1", "x", "inf", "nan", "1e300", "1s", ""}) {
    EXPECT_EQ(code({"run", "a", "--for", text}), ExitCode::Usage) << text;
  }
}

TEST(TheCommandLine, TakesLogLevelsOfModulesAndOfAll) {
  const RunOptions sut =
      options({"run", "--log", "Service Config=5", "--log", "3", "--log", "a=b=0", "file"});
  ASSERT_EQ(sut.logLevels.size(), 3U);
  EXPECT_EQ(sut.logLevels[0].module, "Service Config");
  EXPECT_EQ(sut.logLevels[0].level, 5);
  EXPECT_EQ(sut.logLevels[1].module, "");
  EXPECT_EQ(sut.logLevels[1].level, 3);
  EXPECT_EQ(sut.logLevels[2].module, "a=b");
  EXPECT_EQ(sut.file, "file");
}

TEST(TheCommandLine, RefusesWhatIsNoLogLevel) {
  for (const char* text : {"x", "10", "a=", "a=x", "=5", "a=-1"}) {
    EXPECT_EQ(code({"run", "a", "--log", text}), ExitCode::Usage) << text;
  }
}

TEST(TheCommandLine, TakesSeveralLibraryDirectoriesInOrder) {
  EXPECT_THAT(options({"run", "--lib-dir", "b", "--lib-dir", "a", "file"}).libraryDirectories,
              ElementsAre("b", "a"));
}

TEST(TheCommandLine, TakesTheTracesFile) {
  EXPECT_EQ(options({"run", "a"}).trace, "");
  EXPECT_EQ(options({"run", "a", "--trace", "t-%p.jsonl"}).trace, "t-%p.jsonl");
}

TEST(TheCommandLine, TakesTheVerbsThatReadTraces) {
  const auto isVerb = [](const std::vector<const char*>& words) {
    return std::holds_alternative<Verb>(read(words));
  };
  EXPECT_TRUE(isVerb({"timeline", "t", "-o", "a.svg"}));
  EXPECT_TRUE(isVerb({"timeline", "t", "--json"}));
  EXPECT_TRUE(isVerb({"graph", "t", "u", "--registry"}));
  EXPECT_TRUE(isVerb({"diff", "t", "u", "--max-regress", "12.5%", "--noise", "0.5"}));
  EXPECT_TRUE(isVerb({"advise", "t", "u", "--soon", "100"}));
}

TEST(TheCommandLine, RefusesWhatIsNoUseOfTheVerbsThatReadTraces) {
  EXPECT_EQ(code({"timeline"}), ExitCode::Usage);
  EXPECT_EQ(code({"timeline", "t", "--json", "--trace-events"}), ExitCode::Usage);
  EXPECT_EQ(code({"diff", "t"}), ExitCode::Usage);
  EXPECT_EQ(code({"diff", "t", "u", "--max-regress", "much"}), ExitCode::Usage);
  EXPECT_EQ(code({"diff", "t", "u", "--noise", "-1"}), ExitCode::Usage);
}

TEST(TheCommandLine, NeedsAVerb) {
  EXPECT_EQ(code({}), ExitCode::Usage);
  EXPECT_EQ(code({"walk"}), ExitCode::Usage);
}

TEST(TheCommandLine, NeedsAFile) { EXPECT_EQ(code({"run"}), ExitCode::Usage); }

TEST(TheCommandLine, RefusesAThirdWord) {
  EXPECT_EQ(code({"run", "a", "b", "c"}), ExitCode::Usage);
}

TEST(TheCommandLine, EndsWellAfterHelpAndVersion) {
  EXPECT_EQ(code({"--help"}), ExitCode::WentDown);
  EXPECT_EQ(code({"run", "--help"}), ExitCode::WentDown);
  EXPECT_EQ(code({"--version"}), ExitCode::WentDown);
}

TEST(TheHelp, ListsEveryExitCode) {
  for (int number = 0; number <= static_cast<int>(ExitCode::NoTraceFile); ++number) {
    const std::string blank = number < 10 ? " " : "";
    EXPECT_THAT(describeExitCodes(), HasSubstr("\n " + blank + std::to_string(number) + "  "));
  }
}

}  // namespace
}  // namespace zerva
