#include <csignal>
#include <stdexcept>

#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

TEST(AChildProcess, GivesItsExitCodeAndWhatItWrote) {
  ChildProcess sut{"sh", {"-c", "echo said $0; echo complained >&2; exit 7", "this"}};

  EXPECT_THAT(sut.wait(), Optional(7));
  EXPECT_EQ(sut.output(), "said this\n");
  EXPECT_EQ(sut.errors(), "complained\n");
}

TEST(AChildProcess, RunsWithAddedEnvironmentInTheGivenDirectory) {
  const TempDirectory directory;

  ChildProcess sut{"sh", {"-c", "echo $COLOUR; pwd"}, {{"COLOUR", "blue"}}, directory.path()};

  EXPECT_THAT(sut.wait(), Optional(0));
  EXPECT_EQ(sut.output(), "blue\n" + directory.path().string() + "\n");
}

TEST(AChildProcess, EndedByASignal_GivesTheSignalsNumberAsAShellDoes) {
  ChildProcess sut{"sleep", {"1000"}};

  sut.signal(SIGTERM);

  EXPECT_THAT(sut.wait(), Optional(128 + SIGTERM));
}

TEST(AChildProcess, ThatStillRunsAtTheDeadline_GivesNothing) {
  ChildProcess sut{"sleep", {"1000"}};

  EXPECT_EQ(sut.wait(std::chrono::milliseconds{1}), std::nullopt);
  EXPECT_TRUE(sut.running());
}

TEST(AChildProcess, ThatCannotBeStarted_ThrowsWithItsName) {
  EXPECT_THAT([] { ChildProcess{"/no/such/program"}; },
              testing::ThrowsMessage<std::runtime_error>(HasSubstr("/no/such/program")));
}

TEST(AChildProcess, ThatEndsWithoutTheAwaitedText_IsNotWaitedForLonger) {
  ChildProcess sut{"echo", {"something else"}};

  EXPECT_FALSE(sut.waitForOutput("the text", std::chrono::hours{1}));
}

TEST(AChildProcess, SignalledAsAGroup_PassesTheSignalToItsOwnChildren) {
  ChildProcess sut{"sh", {"-c", "sleep 1000 & echo started; wait"}};
  ASSERT_TRUE(sut.waitForOutput("started"));

  sut.signalGroup(SIGTERM);

  EXPECT_TRUE(waitUntil([&] { return sut.survivors().empty(); }));
}

TEST(AChildProcess, LeavingAProcessOfAnotherGroupBehind_NamesItAsASurvivor) {
  ChildProcess sut{"sh", {"-c", "setsid sleep 1000 & echo $!"}};
  ASSERT_THAT(sut.wait(), Optional(0));

  const pid_t left = std::stoi(sut.output());

  EXPECT_THAT(sut.survivors(), Contains(left));
}

TEST(AChildProcess, Destroyed_LeavesNothingRunning) {
  pid_t left = 0;
  {
    ChildProcess sut{"sh", {"-c", "setsid sleep 1000 & echo $!"}};
    ASSERT_THAT(sut.wait(), Optional(0));
    left = std::stoi(sut.output());
  }

  EXPECT_TRUE(waitUntil([&] { return kill(left, 0) != 0; }));
}

TEST(AChildProcess, ThatLeftNothingBehind_HasNoSurvivors) {
  ChildProcess sut{"true"};
  ASSERT_THAT(sut.wait(), Optional(0));

  EXPECT_THAT(sut.survivors(), IsEmpty());
}

}  // namespace
}  // namespace zerva
