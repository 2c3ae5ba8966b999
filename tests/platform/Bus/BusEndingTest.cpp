#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/platform/Bus/BusWorld.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Barrier.h"
#include "tests/support/Concurrently.h"
#include "tests/support/WaitUntil.h"

namespace {

using namespace zerva;
using testing::HasSubstr;

class AProcessOnTheBus : public BusWorld {
 protected:
  Bus sut{path};
};

class ABus : public BusWorld {};

std::size_t openDescriptors() {
  const std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/** How often the output of a partner says that a request is being held. */
bool holds(const BusPartner& partner, std::size_t requests) {
  const std::string output = const_cast<BusPartner&>(partner).process().output();
  std::size_t found = 0;
  for (std::size_t at = output.find("held"); at != std::string::npos;
       at = output.find("held", at + 1)) {
    ++found;
  }
  return found == requests;
}

TEST_F(AProcessOnTheBus, ThatIsKilled_FailsAllWhoWaitForItAtOnce) {
  // Who waited out the time would be told something else.
  const ReplyTimeoutOf longTime(std::chrono::hours(1));
  BusPartner partner(path, "/partner");
  partner.tell("serve hold MT /hold");
  std::thread killer([&] {
    EXPECT_TRUE(waitUntil([&] { return holds(partner, 8); }));
    partner.process().signal(SIGKILL);
  });
  concurrently(8, [&](std::size_t) {
    EXPECT_EQ(ask("/hold", "x").error, partner.name() + " ended before it answered");
  });
  killer.join();
}

/** How many requests the log says were left without an answer. */
std::size_t saidToBeUnanswered(const RecordingSink& log) {
  const std::string mark = "ended before it answered what was asked of it: ";
  std::size_t all = 0;
  for (const std::string& text : log.texts()) {
    const std::size_t at = text.find(mark);
    if (at != std::string::npos) all += std::stoul(text.substr(at + mark.size()));
  }
  return all;
}

// Some asked between the count and the end, and of those nobody was told but who asked: a service
// that takes no answer for "not found" went on without a word in the log.
TEST_F(AProcessOnTheBus, ThatIsKilledWhileOthersAsk_IsSaidToHaveLeftEachThatItLeft) {
  for (int round = 0; round < 100; ++round) {
    const RecordingSink log("Bus", 3);
    BusPartner partner(path, "/partner");
    partner.tell("serve echo MT /echo");
    std::atomic<std::size_t> asked = 0;
    std::atomic<std::size_t> left = 0;
    std::thread killer([&] {
      EXPECT_TRUE(waitUntil([&] { return asked > 20; }));
      partner.process().signal(SIGKILL);
    });
    concurrently(16, [&](std::size_t) {
      for (Answer answer{true, {}, {}}; answer.ok; ++asked) {
        answer = ask("/echo", "x");
        left += answer.error == partner.name() + " ended before it answered" ? 1U : 0U;
      }
    });
    killer.join();
    EXPECT_EQ(saidToBeUnanswered(log), left);
  }
}

TEST_F(AProcessOnTheBus, ThatIsKilled_LeavesNothingBehind) {
  BusPartner partner(path, "/partner");
  EXPECT_EQ(files(".names"), 2U);
  partner.tell("descriptors");
  partner.process().signal(SIGKILL);
  EXPECT_TRUE(waitUntil([&] { return files(".names") == 1 && files(".sock") == 1; }));
  EXPECT_EQ(ask("/partner", "x").error, "nobody serves channel '/partner'");
}

TEST_F(AProcessOnTheBus, ThatWasKilledBeforeAnybodyTalkedToIt_IsNotFoundAndLeavesNothingBehind) {
  BusPartner partner(path, "/partner");
  partner.process().signal(SIGKILL);
  partner.process().wait();
  EXPECT_EQ(ask("/partner", "x").error, "nobody serves channel '/partner'");
  EXPECT_EQ(files(".names"), 1U);
  EXPECT_EQ(files(".sock"), 1U);
}

TEST_F(AProcessOnTheBus, ThatIsKilled_CanBeReplacedAtOnce) {
  for (int i = 0; i < 5; ++i) {
    BusPartner partner(path, "/partner");
    EXPECT_TRUE(waitUntil([&] { return ask("/partner", "descriptors").ok; }));
    partner.process().signal(SIGKILL);
    partner.process().wait();
  }
}

TEST_F(AProcessOnTheBus, ThatIsStopped_HoldsUpNobodyElseAndIsGivenUpInTime) {
  BusPartner stopped(path, "/stopped");
  const BusPartner other(path, "/other");
  stopped.tell("descriptors");
  stopped.stop();
  {
    const ReplyTimeoutOf shortTime(std::chrono::milliseconds(50));
    EXPECT_EQ(ask("/stopped", "x").error, "channel '/stopped' did not answer in time");
  }
  other.tell("serve echo MT /echo");
  EXPECT_EQ(ask("/echo", "x").data, "x");
  EXPECT_EQ(other.tell("ask /echo|y"), "y");
  stopped.process().signal(SIGCONT);
  EXPECT_TRUE(waitUntil([&] { return ask("/stopped", "descriptors").ok; }));
}

TEST_F(AProcessOnTheBus, ThatIsStoppedBeforeItIsConnectedTo_HoldsUpNobodyElse) {
  BusPartner stopped(path, "/stopped");
  stopped.stop();
  {
    const ReplyTimeoutOf shortTime(std::chrono::milliseconds(50));
    EXPECT_EQ(ask("/stopped", "x").error, "channel '/stopped' did not answer in time");
  }
  const BusPartner other(path, "/other");
  other.tell("serve echo MT /echo");
  EXPECT_EQ(ask("/echo", "x").data, "x");
  stopped.process().signal(SIGKILL);
  stopped.process().wait();
}

TEST_F(AProcessOnTheBus, ThatReadsNothing_IsSentNoMoreThanTheLimitAndFailsWhatIsAskedThen) {
  BusPartner stopped(path, "/stopped");
  stopped.tell("descriptors");
  stopped.stop();
  CommsChannel channel("/test/caller", nullptr);
  const std::string much(std::size_t{8} * 1024 * 1024, 'x');
  int sent = 0;
  while (sent < 20 && channel.sendTo("/stopped", much)) {
    ++sent;
  }
  EXPECT_GE(sent, 7);
  EXPECT_LE(sent, 9);
  EXPECT_EQ(
      ask("/stopped", much).error,
      stopped.name() + " does not read what is sent to it: 67108864 bytes wait for it already");
  stopped.process().signal(SIGKILL);
  stopped.process().wait();
}

TEST_F(AProcessOnTheBus, ThatEndsInOrder_IsNotFoundAnyMoreAndLeavesNothingBehind) {
  BusPartner partner(path, "/partner");
  partner.tell("end");
  EXPECT_EQ(partner.process().wait(), 0) << partner.process().errors();
  EXPECT_EQ(ask("/partner", "x").error, "nobody serves channel '/partner'");
  EXPECT_EQ(files(".names"), 1U);
  EXPECT_EQ(files(".sock"), 1U);
}

TEST_F(AProcessOnTheBus, ThatIsClosedToTheOutside_IsNotFoundAndStillAsksOthers) {
  serve("/here", Mode::MT, [](const std::string& request) { return request; });
  const BusPartner partner(path, "/partner");
  EXPECT_EQ(partner.tell("ask /here|x"), "x");
  sut.closeToOutside();
  EXPECT_EQ(partner.tell("ask /here|x"), "error: nobody serves channel '/here'");
  serve("/later", Mode::MT, [](const std::string& request) { return request; });
  EXPECT_EQ(partner.tell("ask /later|x"), "error: nobody serves channel '/later'");
  EXPECT_EQ(ask("/here", "inside").data, "inside");
}

TEST_F(AProcessOnTheBus, ThatIsClosedToTheOutsideButForOneChannel_IsReachedThereOnly) {
  serve("/here", Mode::MT, [](const std::string& request) { return request; });
  serve("/kept", Mode::MT, [](const std::string& request) { return request; });
  const BusPartner partner(path, "/partner");
  EXPECT_EQ(partner.tell("ask /kept|x"), "x");
  sut.closeToOutside("/kept");
  sut.closeToOutside();
  EXPECT_EQ(partner.tell("ask /kept|again"), "again");
  EXPECT_EQ(partner.tell("ask /here|x"), "error: nobody serves channel '/here'");
}

TEST_F(AProcessOnTheBus, KnowsTheOthersAndWhatTheyServe) {
  serve("/here", Mode::MT, [](const std::string& request) { return request; });
  EXPECT_TRUE(sut.processes().empty());
  {
    BusPartner partner(path, "/partner");
    const auto all = sut.processes();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].id, partner.process().id());
    EXPECT_EQ(all[0].channels, std::vector<std::string>{"/partner"});
    partner.process().signal(SIGKILL);
    partner.process().wait();
    EXPECT_TRUE(waitUntil([&] { return sut.processes().empty(); }));
  }
}

TEST_F(AProcessOnTheBus, ThatIsClosedToTheOutside_StillAnswersWhatItHasTaken) {
  Gate gate;
  serve("/here", Mode::MT, [&](const std::string& request) {
    gate.wait();
    return request;
  });
  const BusPartner partner(path, "/partner");
  std::string answer;
  std::thread asking([&] { answer = partner.tell("ask /here|late"); });
  EXPECT_TRUE(waitUntil([&] { return gate.waiting() == 1; }));
  sut.closeToOutside();
  gate.open();
  asking.join();
  EXPECT_EQ(answer, "late");
}

TEST_F(ABus, ThatIsClosed_FailsWhatWaitsForOthersHere) {
  const ReplyTimeoutOf longTime(std::chrono::hours(1));
  auto sut = std::make_unique<Bus>(path);
  const BusPartner partner(path, "/partner");
  partner.tell("serve hold MT /hold");
  std::string error;
  std::thread asking([&] { error = ask("/hold", "x").error; });
  EXPECT_TRUE(waitUntil([&] { return holds(partner, 1); }));
  sut.reset();
  asking.join();
  EXPECT_EQ(error, "the bus of this process was closed before " + partner.name() + " answered");
}

TEST_F(ABus, ThatIsClosed_FailsWhatOthersWaitForHere) {
  auto sut = std::make_unique<Bus>(path);
  const BusPartner one(path, "/one");
  auto two = std::make_unique<BusPartner>(path, "/two");
  two->tell("serve hold MT /hold");
  std::string answer;
  std::thread asking([&] { answer = one.tell("ask /hold|x"); });
  EXPECT_TRUE(waitUntil([&] { return holds(*two, 1); }));
  two->process().signal(SIGTERM);
  asking.join();
  EXPECT_EQ(answer, "error: " + two->name() + " ended before it answered");
}

TEST_F(ABus, ThatIsClosedWhileOthersUseIt_EndsTheirRequestsAndNothingElse) {
  const BusPartner partner(path, "/partner");
  for (int round = 0; round < 10; ++round) {
    auto sut = std::make_unique<Bus>(path);
    std::atomic<bool> over{false};
    std::atomic<int> answered{0};
    std::vector<std::thread> askers;
    for (int i = 0; i < 4; ++i) {
      askers.emplace_back([&] {
        while (!over) answered += ask("/partner", "descriptors").ok ? 1 : 0;
      });
    }
    EXPECT_TRUE(waitUntil([&] { return answered > 20; }));
    sut.reset();
    over = true;
    for (std::thread& asker : askers) asker.join();
  }
}

TEST_F(ABus, ThatIsOpenedAndClosedManyTimes_LosesNeitherDescriptorsNorFiles) {
  const BusPartner partner(path, "/partner");
  const auto round = [&] {
    const Bus sut(path);
    EXPECT_EQ(partner.tell("ask /partner|ask /nobody|x"), "error: nobody serves channel '/nobody'");
  };
  round();
  const std::size_t before = openDescriptors();
  for (int i = 0; i < 50; ++i) {
    round();
  }
  // A line that wakes a thread which reads is kept for the next one, once there was any.
  EXPECT_LE(openDescriptors(), before + 1);
  EXPECT_EQ(files(""), 2U);
  const Bus sut(path);
  EXPECT_TRUE(waitUntil([&] { return std::stoul(partner.tell("descriptors")) < 25; }));
}

}  // namespace
