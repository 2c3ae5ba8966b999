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
};

Read read(std::vector<const char*> words) {
  words.insert(words.begin(), "zerva");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  Wanted wanted = readCommandLine(static_cast<int>(words.size()), words.data());
  return {std::move(wanted), testing::internal::GetCapturedStdout(),
          testing::internal::GetCapturedStderr()};
}

bool isVerb(const Read& read) { return std::holds_alternative<Verb>(read.wanted); }

TEST(TheCommandLine, TakesTheVerbsThatLookAtARun) {
  EXPECT_TRUE(isVerb(read({"status"})));
  EXPECT_TRUE(isVerb(
      read({"status", "--bus", "/x", "--json", "--timeout", "1", "--patience", "0.1", "WindIfc"})));
  EXPECT_TRUE(isVerb(read({"watch", "--every", "0.5", "--count", "3", "WindIfc"})));
  EXPECT_TRUE(isVerb(read({"call", "--timeout", "1", "WindIfc", "mean"})));
}

TEST(TheCommandLine, TakesEverythingBehindAMethodForArguments) {
  EXPECT_TRUE(isVerb(read({"call", "WindIfc", "mean", "-3", "[1,2]", "--what", "run", "x"})));
}

TEST(TheCommandLine, WantsAnInterfaceAndAMethodOfACall) {
  EXPECT_THAT(read({"call", "WindIfc"}).errors, HasSubstr("METHOD is required"));
  EXPECT_THAT(read({"call"}).errors, HasSubstr("INTERFACE is required"));
}

TEST(TheCommandLine, WantsTimesThatAreLongerThanZero) {
  for (const char* option : {"--timeout", "--patience"}) {
    EXPECT_FALSE(isVerb(read({"status", option, "0"}))) << option;
    EXPECT_FALSE(isVerb(read({"status", option, "x"}))) << option;
  }
  EXPECT_FALSE(isVerb(read({"watch", "--every", "-1"})));
  EXPECT_FALSE(isVerb(read({"watch", "--count", "0"})));
}

TEST(TheCommandLine, LetsARunTellHowItIs) {
  const Read sut = read({"run", "--status", "file"});
  ASSERT_TRUE(std::holds_alternative<RunOptions>(sut.wanted));
  EXPECT_TRUE(std::get<RunOptions>(sut.wanted).status);
  EXPECT_FALSE(std::get<RunOptions>(read({"run", "file"}).wanted).status);
}

TEST(TheHelp, TellsTheExitCodesOfTheVerbsThatLookAtARun) {
  EXPECT_THAT(read({"status", "--help"}).output,
              HasSubstr("  4  there is no service of that name"));
  EXPECT_THAT(read({"watch", "--help"}).output, HasSubstr(" 10  there is no bus"));
  const std::string call = read({"call", "--help"}).output;
  EXPECT_THAT(call, HasSubstr("INTERFACE METHOD [ARGUMENT...]"));
  EXPECT_THAT(call, HasSubstr("  5  no invoker of the interface is recorded"));
}

}  // namespace
}  // namespace zerva
