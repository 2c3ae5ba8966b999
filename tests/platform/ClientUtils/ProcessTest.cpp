#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>

#include "framework/Process.h"
#include "tests/platform/ClientUtils/ProcessWorld.h"
#include "tests/platform/RecordingSink.h"

namespace zerva {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

class AProcess : public ProcessWorld {
 protected:
  /** Tries to start what cannot be started. */
  void expectFailure(std::vector<std::string> arguments, const std::string& cause,
                     char* where = nullptr) {
    const RecordingSink log("Processes", 2);
    const auto sut = start(arguments, environ, where);

    EXPECT_LE(sut->ID(), 0);
    ASSERT_EQ(log.texts().size(), 1U);
    EXPECT_THAT(log.texts().front(), HasSubstr("'" + arguments.front() + "' cannot be started"));
    EXPECT_THAT(log.texts().front(), HasSubstr(cause));
    EXPECT_EQ(log.records().front().level, 2);
  }
};

TEST_F(AProcess, HasTheIdOfTheProgramThatRuns) {
  const auto sut = startProbe("report");

  EXPECT_GT(sut->ID(), 0);
  EXPECT_THAT(reportOf("report"), HasSubstr("process " + std::to_string(sut->ID()) + "\n"));
}

TEST_F(AProcess, GetsItsArgumentsAsTheyAre) {
  const auto sut = startProbe("report", {"exit", "0", "two words", "$HOME;*"});

  EXPECT_THAT(reportOf("report"), HasSubstr("argument two words\nargument $HOME;*\n"));
}

TEST_F(AProcess, GetsTheEnvironmentThatIsHandedToIt) {
  std::string entry = "ZERVA_TEST=a value";
  char* environment[] = {entry.data(), nullptr};
  const auto sut = start({probe, directory.file("report")}, environment);
  ASSERT_TRUE(ended(sut->ID()));

  EXPECT_THAT(reportOf("report"), HasSubstr("environment ZERVA_TEST=a value\n"));
  EXPECT_THAT(reportOf("report"), Not(HasSubstr("environment PATH=")));
}

TEST_F(AProcess, StartsInTheDirectoryThatIsNamed) {
  std::string where = directory.path();
  const auto sut = start({probe, directory.file("report")}, environ, where.data());
  ASSERT_TRUE(ended(sut->ID()));

  EXPECT_THAT(reportOf("report"), HasSubstr("directory " + where + "\n"));
}

TEST_F(AProcess, StartsInTheCallersDirectoryOtherwise) {
  const auto sut = startProbe("report");

  EXPECT_THAT(reportOf("report"),
              HasSubstr("directory " + std::filesystem::current_path().string() + "\n"));
}

TEST_F(AProcess, IsSearchedInPathWhenItsNameHasNoSlash) {
  const auto sut = start({"true"});

  EXPECT_GT(sut->ID(), 0);
  ASSERT_TRUE(ended(sut->ID()));
  EXPECT_EQ(entryOf(sut->ID()).exitStatus, 0);
}

TEST_F(AProcess, HasAProcessGroupOfItsOwn) {
  const auto sut = startProbe("report");

  EXPECT_THAT(reportOf("report"), HasSubstr("group own\n"));
}

TEST_F(AProcess, HasDefaultDispositionsAndNothingBlockedWhateverTheCallerHas) {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  const auto oldPipe = std::signal(SIGPIPE, SIG_IGN);
  const auto oldUser = std::signal(SIGUSR1, [](int) {});
  const auto sut = startProbe("report");
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  std::signal(SIGPIPE, oldPipe);
  std::signal(SIGUSR1, oldUser);

  EXPECT_THAT(reportOf("report"), Not(HasSubstr("blocked")));
  EXPECT_THAT(reportOf("report"), Not(HasSubstr("disposition")));
}

TEST_F(AProcess, InheritsNoDescriptorsButTheStandardThree) {
  const int open = ::open("/dev/null", O_RDONLY);  // NOLINT: meant to be inherited
  ASSERT_GT(::fcntl(open, F_DUPFD, 200), 0);
  const auto sut = startProbe("report");
  ::close(open);

  EXPECT_THAT(reportOf("report"), HasSubstr("descriptor 0\ndescriptor 1\ndescriptor 2\n"));
  EXPECT_THAT(reportOf("report"), Not(ContainsRegex("descriptor ([3-9]|[0-9]{2,})\n")));
}

TEST_F(AProcess, WhoseProgramIsMissing_HasNoIdAndIsLogged) {
  expectFailure({directory.file("missing")}, "No such file or directory");
  expectFailure({"no-such-program-anywhere"}, "No such file or directory");
}

TEST_F(AProcess, WhoseProgramMayNotBeExecuted_HasNoIdAndIsLogged) {
  expectFailure({directory.write("text", "just a text")}, "Permission denied");
}

TEST_F(AProcess, WhoseProgramIsATextWithoutInterpreter_IsNotGivenToAShell) {
  const auto script = directory.write("script", "exit 0\n");
  std::filesystem::permissions(script, std::filesystem::perms::owner_all);

  expectFailure({script}, "Exec format error");
}

TEST_F(AProcess, WhoseDirectoryIsMissing_HasNoIdAndIsLoggedWithTheDirectory) {
  std::string where = directory.file("missing");

  expectFailure({"true"}, where, where.data());
}

TEST_F(AProcess, WithoutAProgram_HasNoId) {
  char* argv[] = {nullptr};

  EXPECT_LE(Process(0, argv, environ, nullptr).ID(), 0);
  EXPECT_LE(Process(0, nullptr, environ, nullptr).ID(), 0);
}

TEST_F(AProcess, ThatDidNotStart_IsNotListed) {
  const auto sut = start({directory.file("missing")});

  EXPECT_THAT(StartedProcesses::list(), testing::IsEmpty());
}

TEST_F(AProcess, RunsOnWhenItsObjectIsDeleted) {
  auto sut = startProbe("report", {"hang"});
  const int id = sut->ID();

  sut.reset();

  EXPECT_TRUE(entryOf(id).running);
}

TEST_F(AProcess, IsCountedAsLongAsItsObjectLives) {
  const auto before = StartedProcesses::objects();
  {
    const auto started = start({"true"});
    const auto failed = start({directory.file("missing")});
    EXPECT_EQ(StartedProcesses::objects(), before + 2);
  }

  EXPECT_EQ(StartedProcesses::objects(), before);
}

}  // namespace
}  // namespace zerva
