#include <gmock/gmock.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <mutex>

#include "framework/Export.h"
#include "tests/platform/ClientUtils/ProcessWorld.h"

namespace {

std::mutex signalsMutex;
std::vector<int> signalledDescriptors;  // guarded by signalsMutex

}  // namespace

/** Stands before the C library's, to see in which order processes are signalled. */
extern "C" ZERVA_EXPORT int pidfd_send_signal(int descriptor, int number, siginfo_t* /*info*/,
                                              unsigned /*flags*/) noexcept {
  if (number == SIGTERM) {
    const std::lock_guard lock(signalsMutex);
    signalledDescriptors.push_back(descriptor);
  }
  return static_cast<int>(::syscall(SYS_pidfd_send_signal, descriptor, number, nullptr, 0));
}

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TerminatingAll : public ProcessWorld {
 protected:
  static std::vector<StartedProcess> terminateAll(int grace = 60000) {
    return StartedProcesses::terminateAll(std::chrono::milliseconds(grace));
  }

  static std::string describeAll(const std::vector<StartedProcess>& all) {
    std::string text;
    for (const StartedProcess& one : all) {
      text += std::to_string(one.id) + (one.running ? " running" : " ended by ") +
              std::to_string(one.signal) + "\n";
    }
    return text;
  }
};

TEST_F(TerminatingAll, EndsWhatRunsAndTellsHow) {
  const auto first = startProbe("first", {"hang"});
  const auto second = startProbe("second", {"hang"});

  const auto ended = terminateAll();

  EXPECT_EQ(describeAll(ended), std::to_string(first->ID()) + " ended by 15\n" +
                                    std::to_string(second->ID()) + " ended by 15\n");
  EXPECT_FALSE(known(first->ID()));
  EXPECT_FALSE(known(second->ID()));
}

TEST_F(TerminatingAll, SaysNothingOfWhatHadEndedBefore) {
  const auto before = start({"true"});
  ASSERT_TRUE(waitUntil([&] { return !entryOf(before->ID()).running; }));

  EXPECT_THAT(terminateAll(), IsEmpty());
}

TEST_F(TerminatingAll, TellsTheOneThatWasStartedLastFirst) {
  const auto first = startProbe("first", {"hang"});
  const auto second = startProbe("second", {"hang"});
  const auto third = startProbe("third", {"hang"});
  signalledDescriptors.clear();

  terminateAll();

  // Descriptors were given out in the order of the starts.
  ASSERT_EQ(signalledDescriptors.size(), 3U);
  EXPECT_GT(signalledDescriptors[0], signalledDescriptors[1]);
  EXPECT_GT(signalledDescriptors[1], signalledDescriptors[2]);
}

TEST_F(TerminatingAll, KillsWhatHasNotEndedInTime) {
  const auto sut = startProbe("report", {"hang-on"});

  const auto ended = terminateAll(10);

  EXPECT_EQ(describeAll(ended), std::to_string(sut->ID()) + " ended by 9\n");
  EXPECT_FALSE(known(sut->ID()));
}

TEST_F(TerminatingAll, WaitsAtMostTheGraceForTheOthersOfOneThatHasEnded) {
  const auto willing = startProbe("willing", {"hang"});
  const auto unwilling = startProbe("unwilling", {"hang-on"});

  const auto ended = terminateAll(100);

  EXPECT_EQ(describeAll(ended), std::to_string(willing->ID()) + " ended by 15\n" +
                                    std::to_string(unwilling->ID()) + " ended by 9\n");
}

TEST_F(TerminatingAll, LeavesNothingOfTheirProcessGroups) {
  const auto sut = startProbe("report", {"leave", directory.file("child")});
  ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(directory.file("child")); }));

  terminateAll();

  // What is left of the group belongs to the system's first process, which reaps it in its time.
  const std::string child = reportOf("child");
  const std::string id = child.substr(child.rfind(' ') + 1);
  EXPECT_TRUE(waitUntil([&] {
    const std::filesystem::path stat = "/proc/" + id.substr(0, id.find('\n')) + "/stat";
    if (!std::filesystem::exists(stat)) return true;
    try {
      return readFile(stat).find(") Z ") != std::string::npos;
    } catch (const std::exception&) {
      return true;
    }
  }));
}

TEST_F(TerminatingAll, WithNothingRunning_ReturnsAtOnce) { EXPECT_THAT(terminateAll(), IsEmpty()); }

TEST_F(TerminatingAll, MayBeFollowedByNewProcesses) {
  const auto before = startProbe("before", {"hang"});
  terminateAll();

  const auto sut = startProbe("after", {"exit", "3"});

  ASSERT_TRUE(ended(sut->ID()));
  EXPECT_EQ(entryOf(sut->ID()).exitStatus, 3);
}

}  // namespace
}  // namespace zerva
