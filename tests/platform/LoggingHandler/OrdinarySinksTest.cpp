#include <gmock/gmock.h>
#include <sys/resource.h>

#include <cerrno>
#include <cstdlib>

#include "tests/platform/LoggingHandler/LoggingTest.h"
#include "tests/platform/LoggingHandler/StandardErrorCapture.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Concurrently.h"

namespace zerva {
namespace {

using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

constexpr char kPlainStart[] = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} ";

class LogFile : public LoggingTest {
 protected:
  LogFile() { open(path); }
  bool open(const std::string& file) { return LogSettings::logToFile(file, error); }
  std::string text() const { return readFile(path); }
  void log(int level, const char* line) {
    logAppUni(module.c_str(), "src/File", level, 12, "%s", line);
  }

  const TempDirectory directory;
  const std::string path = directory.file("log");
  std::string error;
};

TEST_F(LogFile, GetsTimeLevelModuleSourceAndTextOfALine) {
  logAppUni(module.c_str(), "src/File", 2, 12, "%d of %s", 3, "these");

  EXPECT_THAT(text(), MatchesRegex(kPlainStart + ("error    \\[" + module + "\\] ") +
                                   "src/File:12 3 of these\n"));
}

TEST_F(LogFile, NamesTheLevels) {
  for (int level = 1; level <= 7; ++level) log(level, "x");

  const std::string all = text();
  for (const char* name : {"fatal ", "error ", "warning ", "info ", "progress ", "detail "}) {
    EXPECT_THAT(all, HasSubstr(name));
  }
}

TEST_F(LogFile, GetsALineWhoseLevelIsOff) {
  log(9, "not asked for");

  EXPECT_THAT(text(), EndsWith("not asked for\n"));
}

TEST_F(LogFile, GetsLinesOfAnyLengthWhole) {
  const std::string long1(511, 'a');
  const std::string long2(512, 'b');
  const std::string long3(300000, 'c');

  for (const auto& line : {long1, long2, long3}) log(4, line.c_str());

  EXPECT_THAT(text(), HasSubstr(" " + long1 + "\n"));
  EXPECT_THAT(text(), HasSubstr(" " + long2 + "\n"));
  EXPECT_THAT(text(), HasSubstr(" " + long3 + "\n"));
}

TEST_F(LogFile, GetsFurtherLinesOfATextIndented) {
  log(4, "one\ntwo\nthree");

  EXPECT_THAT(text(), EndsWith(" one\n    two\n    three\n"));
}

TEST_F(LogFile, GetsNoEmptyLineForALineFeedAtTheEnd) {
  log(4, "one\n");
  log(4, "two\n");

  EXPECT_THAT(text(), Not(HasSubstr("\n\n")));
}

TEST_F(LogFile, IsAppendedTo) {
  log(4, "before");
  open("");

  open(path);
  log(4, "after");

  EXPECT_THAT(text(), ContainsRegex("before\n.*after\n"));
}

TEST_F(LogFile, GetsNothingMoreWhenItWasClosed) {
  open("");

  log(4, "too late");

  EXPECT_EQ(text(), "");
}

TEST_F(LogFile, ThatCannotBeOpened_IsToldWithItsNameAndCause) {
  const std::string missing = directory.file("no/such/log");

  EXPECT_FALSE(open(missing));

  EXPECT_THAT(error, StartsWith(missing));
  EXPECT_THAT(error, HasSubstr("No such file or directory"));
}

TEST_F(LogFile, IsKeptWhenTheNextCannotBeOpened) {
  open(directory.file("no/such/log"));

  log(4, "still here");

  EXPECT_THAT(text(), EndsWith("still here\n"));
}

TEST_F(LogFile, OnAFullDisk_IsReportedOnceOnStandardErrorAndLosesNoOtherSink) {
  const StandardErrorCapture standardError;
  const RecordingSink sink(module);
  ASSERT_TRUE(open("/dev/full"));

  log(4, "first");
  log(4, "second");

  EXPECT_THAT(standardError.text(),
              MatchesRegex("Lines of the log file '/dev/full' are lost: No space left .*\n"));
  EXPECT_THAT(sink.texts(), testing::ElementsAre("first", "second"));
}

TEST_F(LogFile, GetsLinesOfManyThreadsWhole) {
  constexpr std::size_t kThreads = 8;
  constexpr int kLines = 100;

  concurrently(kThreads, [&](std::size_t thread) {
    for (int i = 0; i < kLines; ++i)
      log(4, std::string(200, static_cast<char>('a' + thread)).c_str());
  });

  std::istringstream lines(text());
  std::size_t count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    ASSERT_THAT(line, ContainsRegex(" (a{200}|b{200}|c{200}|d{200}|e{200}|f{200}|g{200}|h{200})$"));
  }
  EXPECT_EQ(count, kThreads * kLines);
}

TEST_F(LogFile, MayBeChangedWhileOthersLog) {
  const std::string other = directory.file("other");
  constexpr int kLines = 200;

  concurrently(3, [&](std::size_t thread) {
    for (int i = 0; i < kLines; ++i) {
      if (thread == 0) {
        std::string ignored;
        LogSettings::logToFile(i % 2 == 0 ? other : path, ignored);
      } else {
        log(4, "a line");
      }
    }
  });

  const std::string all = text() + readFile(other);
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 2 * kLines);
}

TEST_F(LogFile, IsWrittenToWithoutChangingErrno) {
  errno = ENOTTY;

  log(4, "between a call and the look at its error");

  EXPECT_EQ(errno, ENOTTY);
}

class LogOnStandardError : public LoggingTest {
 protected:
  ~LogOnStandardError() override { ::unsetenv("JOURNAL_STREAM"); }
  void log(int level, const char* line) {
    LogSettings::logToStandardError(true);
    logAppUni(module.c_str(), "src/File", level, 12, "%s", line);
  }

  const StandardErrorCapture standardError;
};

TEST_F(LogOnStandardError, IsPlainAndReadable) {
  log(3, "careful");

  EXPECT_THAT(standardError.text(), MatchesRegex(kPlainStart + ("warning  \\[" + module + "\\] ") +
                                                 "src/File:12 careful\n"));
}

TEST_F(LogOnStandardError, HasPrioritiesInsteadOfTimesWhenItLeadsToTheJournal) {
  ::setenv("JOURNAL_STREAM", StandardErrorCapture::journalStream().c_str(), 1);

  log(1, "fatal");
  log(2, "error");
  log(3, "warning");
  log(4, "information");
  log(5, "progress");

  const std::string rest = "[" + module + "] src/File:12 ";
  EXPECT_EQ(standardError.text(), "<2>" + rest + "fatal\n<3>" + rest + "error\n<4>" + rest +
                                      "warning\n<6>" + rest + "information\n<7>" + rest +
                                      "progress\n");
}

TEST_F(LogOnStandardError, GivesThePriorityOnEveryLineOfATextForTheJournal) {
  ::setenv("JOURNAL_STREAM", StandardErrorCapture::journalStream().c_str(), 1);

  log(2, "one\ntwo");

  EXPECT_EQ(standardError.text(), "<3>[" + module + "] src/File:12 one\n<3>    two\n");
}

TEST_F(LogOnStandardError, IsPlainWhenTheJournalIsSomewhereElse) {
  ::setenv("JOURNAL_STREAM", "1:1", 1);

  log(2, "here");

  EXPECT_THAT(standardError.text(), Not(StartsWith("<")));
}

TEST_F(LogOnStandardError, GetsNothingWhenItIsOff) {
  log(4, "on");
  LogSettings::logToStandardError(false);

  logAppUni(module.c_str(), "src/File", 1, 1, "off");

  EXPECT_THAT(standardError.text(), Not(HasSubstr("off")));
}

}  // namespace
}  // namespace zerva
