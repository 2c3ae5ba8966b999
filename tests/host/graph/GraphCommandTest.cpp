#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "host/CommandLine.h"

namespace zerva {
namespace {

using testing::HasSubstr;

/** What a command line asks for, and what was printed meanwhile. */
struct Read {
  Wanted wanted;
  std::string output;
  std::string errors;

  bool isVerb() const { return std::holds_alternative<Verb>(wanted); }
};

Read read(std::vector<const char*> words) {
  words.insert(words.begin(), {"zerva", "graph"});
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Wanted wanted = readCommandLine(static_cast<int>(words.size()), words.data());
  return {std::move(wanted), testing::internal::GetCapturedStdout(),
          testing::internal::GetCapturedStderr()};
}

TEST(TheCommandLineOfAGraph, TakesTracesOrABus) {
  EXPECT_TRUE(read({"one.jsonl", "two.jsonl", "-o", "x.svg"}).isVerb());
  EXPECT_TRUE(read({"--live"}).isVerb());
  EXPECT_TRUE(read({"--live", "--bus", "/x", "--timeout", "0.5", "--json", "--registry"}).isVerb());
}

TEST(TheCommandLineOfAGraph, WantsOneOfThem) {
  const Read sut = read({});
  EXPECT_FALSE(sut.isVerb());
  EXPECT_THAT(sut.errors, HasSubstr("TRACE or --live is required"));
}

TEST(TheCommandLineOfAGraph, DoesNotTakeBoth) {
  const Read sut = read({"--live", "one.jsonl"});
  EXPECT_FALSE(sut.isVerb());
  EXPECT_THAT(sut.errors, HasSubstr("TRACE excludes --live"));
}

TEST(TheCommandLineOfAGraph, TakesWhatIsAboutABusOnlyWithOne) {
  EXPECT_THAT(read({"one.jsonl", "--bus", "/x"}).errors, HasSubstr("--bus requires --live"));
  EXPECT_THAT(read({"one.jsonl", "--timeout", "1"}).errors, HasSubstr("--timeout requires --live"));
}

TEST(TheHelpOfAGraph, TellsTheExitCodes) {
  const std::string sut = read({"--help"}).output;
  for (const char* line :
       {"\n  0  done\n", "\n  2  a trace cannot be read",
        " unexpected error, told on standard error\n", "\n  3  a process did not answer",
        "\n  4  no process of the bus tells", "\n 10  there is no bus"}) {
    EXPECT_THAT(sut, HasSubstr(line));
  }
}

}  // namespace
}  // namespace zerva
