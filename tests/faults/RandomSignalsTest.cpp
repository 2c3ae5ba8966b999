// Processes that are killed or stopped at any moment while calls go between all of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <array>
#include <atomic>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "framework/CallException.h"
#include "tests/support/WaitUntil.h"
#include "tests/system/RelayHosts.h"

namespace zerva {
namespace {

using testing::HasSubstr;

constexpr unsigned kSeed = 20240607;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kRounds = 20;
#else
constexpr int kRounds = 200;
#endif

class AHostAmongThree : public RelayHosts {
 protected:
  /** Calls go round between all hosts until this is destroyed; whether they succeed is open. */
  class Traffic {
   public:
    Traffic() {
      for (const std::vector<std::string>& way :
           {std::vector<std::string>{"First", "Second", "Third"},
            std::vector<std::string>{"Second", "Third", "First"},
            std::vector<std::string>{"Third", "First", "Second"}}) {
        threads_.emplace_back([this, way] { callOn(way); });
      }
    }
    ~Traffic() {
      over_ = true;
      for (std::thread& thread : threads_) thread.join();
    }
    Traffic(const Traffic&) = delete;
    Traffic& operator=(const Traffic&) = delete;

    /** Waits until so many more calls have ended, one way or the other. */
    bool goesOn(int calls) {
      const int before = ended_;
      return waitUntil([&] { return ended_ >= before + calls; });
    }

   private:
    void callOn(const std::vector<std::string>& way) {
      while (!over_) {
        try {
          RelayCaller(way[0]).pass({way.begin() + 1, way.end()});
        } catch (const CallException&) {
          // One of those on the way is not there now.
        }
        ++ended_;
      }
    }

    std::atomic<bool> over_{false};
    std::atomic<int> ended_{0};
    std::vector<std::thread> threads_;
  };

  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random); }

  std::string anyHost() { return std::vector<std::string>{"First", "Second", "Third"}.at(upTo(2)); }

  /**
   * Kills it while calls go on; often its successor too, while that one starts, which may be
   * stopped for a while before. The others reach each other all the time.
   */
  void killInTraffic(const std::string& victim) {
    const auto others = othersThan(victim);
    Traffic traffic;
    ASSERT_TRUE(traffic.goesOn(upTo(30)));
    ASSERT_NO_FATAL_FAILURE(kill(victim));
    expectCallsBetween(others[0], others[1]);
    if (upTo(1) == 0) return;
    ASSERT_NO_FATAL_FAILURE(launch(victim));
    ASSERT_TRUE(traffic.goesOn(upTo(200)));
    if (upTo(1) == 0) {
      ASSERT_NO_FATAL_FAILURE(stopInItsStart(victim));
    }
    ASSERT_NO_FATAL_FAILURE(kill(victim));
    expectCallsBetween(others[0], others[1]);
  }

  /** However far its start has come: it goes on with it, and the others without it meanwhile. */
  void stopInItsStart(const std::string& victim) {
    const auto others = othersThan(victim);
    host(victim).signal(SIGSTOP);
    expectCallsBetween(others[0], others[1]);
    host(victim).signal(SIGCONT);
    ASSERT_TRUE(host(victim).waitForOutput("up       " + victim)) << host(victim).errors();
  }

  /** Stops it while calls go on. Then it goes on or is killed; who waits for it hears of it. */
  void stopInTraffic(const std::string& victim) {
    const auto others = othersThan(victim);
    Traffic traffic;
    ASSERT_TRUE(traffic.goesOn(upTo(30)));
    host(victim).signal(SIGSTOP);
    expectCallsBetween(others[0], others[1]);
    if (upTo(1) == 0) {
      host(victim).signal(SIGCONT);
    } else {
      ASSERT_NO_FATAL_FAILURE(kill(victim));
    }
  }

  /** Has a host end that may have failed in its start. */
  void expectEnd(const std::string& name) {
    // Before it has come to itself a signal ends it as it does any program.
    EXPECT_TRUE(waitUntil([&] {
      return !host(name).output().empty() || !host(name).errors().empty() || !host(name).running();
    }));
    host(name).signal(SIGTERM);
    const std::optional<int> code = host(name).wait();
    const std::string said = host(name).output() + host(name).errors();
    ASSERT_TRUE(code.has_value()) << said;
    EXPECT_THAT(*code, testing::AnyOf(0, 5, 6, 10, 11)) << said;
    if (*code != 0) {
      EXPECT_THAT(said, testing::AnyOf(HasSubstr("zerva: "), HasSubstr(" error "))) << *code;
    }
    EXPECT_TRUE(host(name).survivors().empty());
  }

  std::mt19937 random{kSeed};
};

TEST_F(AHostAmongThree, KilledOrStoppedAtAnyMoment_HarmsNobodyElseAndCanBeStartedAgain) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  for (int round = 0; round < kRounds; ++round) {
    const std::string victim = anyHost();
    const bool stops = upTo(2) == 0;
    SCOPED_TRACE("round " + std::to_string(round) + ": " + victim + (stops ? " stops" : " dies"));
    if (stops) {
      ASSERT_NO_FATAL_FAILURE(stopInTraffic(victim));
    } else {
      ASSERT_NO_FATAL_FAILURE(killInTraffic(victim));
    }
    ASSERT_NO_FATAL_FAILURE(expectAllWorkAgain());
    if (HasFailure()) return;
  }
  endAll();
}

TEST_F(AHostAmongThree, WhoseBusDirectoryIsTakenAway_TellsThatNobodyIsThereAndGoesDownInOrder) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  std::filesystem::remove_all(busDirectory());
  EXPECT_THAT(call({"First"}).get(), HasSubstr("nobody serves channel '/test/First'"));
  for (const char* const name : {"Third", "Second", "First"}) end(name);
}

TEST_F(AHostAmongThree,
       WhoseBusDirectoryIsTakenAwayInTraffic_EndsWhatIsUnderWayAndGoesDownInOrder) {
  ASSERT_NO_FATAL_FAILURE(startAll());
  Traffic traffic;
  CallEnd held = call({"First", "Second", "hold"});
  awaitHeld("Second");
  ASSERT_TRUE(traffic.goesOn(30));

  std::filesystem::remove_all(busDirectory());

  // The calls fail from now on; each ends.
  EXPECT_TRUE(traffic.goesOn(300));
  end("Second");
  EXPECT_THAT(held.get(), HasSubstr("held until it was stopped"));
  for (const char* const name : {"Third", "First"}) end(name);
}

TEST_F(AHostAmongThree, WhoseBusDirectoryIsTakenAwayInItsStart_EndsAndTellsWhatFailed) {
  constexpr int kStarts = 12;
  for (int round = 0; round < kStarts; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    for (const char* const name : {"First", "Second", "Third"}) launch(name);
    // Before the first file of the bus, between them, or when all are there.
    const char* const sign = std::array{"", "zerva: ", "up       "}.at(round % 3);
    ASSERT_TRUE(host("First").waitForOutput(sign)) << host("First").errors();
    std::error_code alreadyGone;
    std::filesystem::remove_all(busDirectory(), alreadyGone);
    for (const char* const name : {"First", "Second", "Third"}) expectEnd(name);
  }
}

}  // namespace
}  // namespace zerva
