// Processes that are killed or stopped at any moment while calls go between all of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
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

  /** Kills it while calls go on; often its successor too, while that one starts. */
  void killInTraffic(const std::string& victim) {
    Traffic traffic;
    ASSERT_TRUE(traffic.goesOn(upTo(30)));
    ASSERT_NO_FATAL_FAILURE(kill(victim));
    if (upTo(1) == 0) return;
    ASSERT_NO_FATAL_FAILURE(launch(victim));
    ASSERT_TRUE(traffic.goesOn(upTo(200)));
    ASSERT_NO_FATAL_FAILURE(kill(victim));
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

}  // namespace
}  // namespace zerva
