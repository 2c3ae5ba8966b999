#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "tests/platform/ClientUtils/ProcessWorld.h"
#include "tests/platform/ClientUtils/ThreadReports.h"
#include "tests/platform/RecordingSink.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class AnEndedProcess : public ProcessWorld {
 protected:
  static bool reaperRuns() {
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
      if (threadFile(std::stoi(thread.path().filename()), "comm") == "zerva reaper") return true;
    }
    return false;
  }

  static std::size_t descriptorCount() {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& one : std::filesystem::directory_iterator("/proc/self/fd")) {
      ++count;
    }
    return count;
  }
};

TEST_F(AnEndedProcess, LeavesNoZombie) {
  const auto sut = start({"true"});

  EXPECT_TRUE(waitUntil([&] { return !known(sut->ID()); }));
}

TEST_F(AnEndedProcess, IsListedWithItsExitStatus) {
  const auto sut = startProbe("report", {"exit", "7"});
  ASSERT_TRUE(ended(sut->ID()));

  const StartedProcess entry = entryOf(sut->ID());

  EXPECT_EQ(entry.program, probe);
  EXPECT_EQ(entry.exitStatus, 7);
  EXPECT_EQ(entry.signal, 0);
}

TEST_F(AnEndedProcess, IsListedWithTheSignalThatEndedIt) {
  const auto sut = startProbe("report", {"hang"});
  ::kill(sut->ID(), SIGKILL);
  ASSERT_TRUE(ended(sut->ID()));

  EXPECT_EQ(entryOf(sut->ID()).signal, SIGKILL);
  EXPECT_EQ(entryOf(sut->ID()).exitStatus, -1);
}

TEST_F(AnEndedProcess, IsLogged) {
  const RecordingSink log("Processes", 5);
  const auto sut = startProbe("report", {"exit", "7"});

  EXPECT_TRUE(waitUntil([&] { return log.texts().size() == 1; }));
  EXPECT_THAT(log.texts().front(), HasSubstr("ended with status 7"));
}

TEST_F(AnEndedProcess, LeavesNothingInTheListWhenItsObjectIsGone) {
  auto before = start({"true"});
  ASSERT_TRUE(ended(before->ID()));
  before.reset();
  auto meanwhile = start({"true"});
  meanwhile.reset();

  EXPECT_TRUE(waitUntil([] { return StartedProcesses::list().empty(); }));
}

TEST_F(AnEndedProcess, IsListedInTheOrderOfTheStarts) {
  const auto first = start({"true"});
  const auto second = startProbe("report", {"hang"});
  const auto third = start({"false"});

  std::vector<int> ids;
  for (const StartedProcess& process : StartedProcesses::list()) ids.push_back(process.id);

  EXPECT_THAT(ids, testing::ElementsAre(first->ID(), second->ID(), third->ID()));
}

TEST_F(AnEndedProcess, ThatTheProgramStartedByOtherMeans_IsNotReaped) {
  const auto running = startProbe("report", {"hang"});
  const pid_t own = ::fork();
  if (own == 0) ::_exit(9);
  siginfo_t info{};
  ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(own), &info, WEXITED | WNOWAIT), 0);
  // The reaper has looked at its children since, one of which has ended.
  const auto sut = start({"true"});
  ASSERT_TRUE(ended(sut->ID()));

  int status = 0;
  EXPECT_EQ(::waitpid(own, &status, 0), own);
  EXPECT_EQ(WEXITSTATUS(status), 9);
}

TEST_F(AnEndedProcess, IsNoticedWhenTheProgramIgnoresTheSignalOfItsEnd) {
  const auto old = std::signal(SIGCHLD, SIG_IGN);
  const auto sut = start({"true"});

  EXPECT_TRUE(ended(sut->ID()));
  std::signal(SIGCHLD, old);
  EXPECT_TRUE(waitUntil([&] { return !known(sut->ID()); }));
}

TEST_F(AnEndedProcess, IsReapedAlsoWhenNoDescriptorWasToBeHad) {
  start({"true"});
  ASSERT_TRUE(waitUntil([] { return StartedProcesses::list().empty(); }));
  std::vector<int> taken;
  for (int next = ::dup(0); next >= 0; next = ::dup(0)) taken.push_back(next);
  const auto sut = start({"true"});
  for (const int one : taken) ::close(one);

  EXPECT_GT(sut->ID(), 0);
  EXPECT_TRUE(ended(sut->ID()));
  EXPECT_TRUE(waitUntil([&] { return !known(sut->ID()); }));
}

TEST_F(AnEndedProcess, TheLastOfAll_EndsTheThreadThatReaps) {
  const auto sut = startProbe("report", {"hang"});
  ASSERT_TRUE(waitUntil([] { return reaperRuns(); }));

  ::kill(sut->ID(), SIGKILL);

  EXPECT_TRUE(waitUntil([] { return !reaperRuns(); }));
}

TEST_F(AnEndedProcess, OfMany_LeavesNoDescriptorsBehind) {
  start({"true"});
  ASSERT_TRUE(waitUntil([] { return StartedProcesses::list().empty(); }));
  const std::size_t before = descriptorCount();

  for (int i = 0; i < 20; ++i) start({"true"});

  ASSERT_TRUE(waitUntil([] { return StartedProcesses::list().empty(); }));
  EXPECT_EQ(descriptorCount(), before);
}

}  // namespace
}  // namespace zerva
