// Libraries that are opened for real, each in a process of its own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "host/check/LibraryLoad.h"
#include "tests/support/Patience.h"

namespace zerva {
namespace {

using testing::HasSubstr;

const std::string build = ZERVA_BUILD_DIRECTORY;

std::string sut(const std::string& library, const std::string& creator,
                std::chrono::milliseconds longest = patience()) {
  return loadForReal(build + "/bin/zerva", {library, creator, {build + "/check-libraries"}},
                     longest);
}

TEST(ALibraryThatIsOpenedForReal, FailsNotWhenNothingIsWrong) {
  EXPECT_EQ(sut("libTraps.so", "createTraps"), "");
}

TEST(ALibraryThatIsOpenedForReal, IsSearchedInTheHostsDirectories) {
  EXPECT_EQ(loadForReal(build + "/bin/zerva", {"libPlain.so", "createPlain", {build + "/plugins"}},
                        patience()),
            "");
}

TEST(ALibraryThatIsOpenedForReal, FailsWithTheLoadersTextWhenItIsMissing) {
  EXPECT_THAT(sut("libNowhere.so", "create"), HasSubstr("libNowhere.so: cannot open"));
}

TEST(ALibraryThatIsOpenedForReal, FailsWithTheLoadersTextWhenItsCreatorIsMissing) {
  EXPECT_THAT(sut("libTraps.so", "createNothing"), HasSubstr("undefined symbol: createNothing"));
}

TEST(ALibraryThatIsOpenedForReal, MayCrashWhileItIsOpened) {
  EXPECT_EQ(sut("libCrashing.so", "createCrashing"), "it crashed (SIGABRT) while it was opened");
}

TEST(ALibraryThatIsOpenedForReal, MayCrashWhileItIsClosed) {
  EXPECT_EQ(sut("libCrashingAtEnd.so", "createCrashingAtEnd"),
            "it crashed (SIGABRT) while it was closed");
}

TEST(ALibraryThatIsOpenedForReal, MayEndItsProcess) {
  EXPECT_EQ(sut("libEnding.so", "createEnding"),
            "it ended the process with code 3 while it was opened");
}

TEST(ALibraryThatIsOpenedForReal, IsNotWaitedForLongerThanItMayTake) {
  EXPECT_EQ(sut("libHanging.so", "createHanging", std::chrono::milliseconds{1200}),
            "it was not over after 1.200 s while it was opened");
}

TEST(ALibraryThatIsOpenedForReal, FailsWithoutAProgramToDoIt) {
  EXPECT_EQ(loadForReal(build + "/no-such-program", {"a", "b", {}}, patience()),
            "the process for it cannot be started");
}

}  // namespace
}  // namespace zerva
