#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

#include "runtime/libClientUtils/trace/CallTally.h"
#include "tests/support/Concurrently.h"
#include "tests/support/NoMemory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

class ATallyOfCalls : public testing::Test {
 protected:
  struct Visited {
    std::string who;
    CallFigures figures;
  };

  std::vector<Visited> changed() {
    std::vector<Visited> all;
    sut.visitChanged([&](const CallKey& key, const CallFigures& figures) {
      all.push_back({std::string(key.service) + ">" + std::string(key.channel) + " " +
                         std::string(key.interface) + "." + std::string(key.method),
                     figures});
    });
    return all;
  }

  CallTally sut;
};

constexpr CallKey kKey{"/from", "/to", "Ifc", "method"};

TEST_F(ATallyOfCalls, HandsOverEverythingAgainWhenAllIsTakenForChanged) {
  sut.add(0, kKey, 5, false);
  EXPECT_EQ(changed().size(), 1U);
  EXPECT_EQ(changed().size(), 0U);
  sut.changeAll();
  EXPECT_EQ(changed().size(), 1U);
}

TEST_F(ATallyOfCalls, AddsUpTheCallsOfAKeyFromAllThreads) {
  concurrently(4, [this](std::size_t thread) {
    for (int call = 0; call < 1000; ++call) {
      sut.add(static_cast<unsigned>(thread), kKey, 5, call == 0);
    }
  });
  const auto all = changed();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].who, "/from>/to Ifc.method");
  EXPECT_EQ(all[0].figures.count, 4000U);
  EXPECT_EQ(all[0].figures.failures, 4U);
  EXPECT_EQ(all[0].figures.total, 20000);
}

TEST_F(ATallyOfCalls, KeepsKeysApartWhoseNamesReadTheSameTogether) {
  sut.add(0, {"ab", "c", "d", "e"}, 1, false);
  sut.add(0, {"a", "bc", "d", "e"}, 1, false);
  EXPECT_EQ(changed().size(), 2U);
}

TEST_F(ATallyOfCalls, TellsAgainOnlyWhatChangedThenWithAllThatWasCounted) {
  sut.add(0, kKey, 1, false);
  sut.add(0, {"/other", "/to", "Ifc", "method"}, 1, false);
  changed();
  EXPECT_TRUE(changed().empty());
  sut.add(5, kKey, 1, false);
  const auto all = changed();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].figures.count, 2U);
}

TEST_F(ATallyOfCalls, PutsADurationIntoAStepThatEndsAQuarterAboveItAtMost) {
  for (std::int64_t duration = 1; duration < std::int64_t{1} << 40; duration = duration * 3 + 1) {
    sut.clear();
    sut.add(0, kKey, duration, false);
    const auto times = changed().at(0).figures.times;
    ASSERT_EQ(times.size(), 1U);
    EXPECT_GE(times.begin()->first, duration);
    EXPECT_LE(times.begin()->first, duration + duration / 4);
  }
}

TEST_F(ATallyOfCalls, TakesDurationsOfAnyLength) {
  sut.add(0, kKey, std::numeric_limits<std::int64_t>::max(), false);
  sut.add(0, kKey, -1, false);
  EXPECT_EQ(changed().at(0).figures.count, 2U);
}

TEST_F(ATallyOfCalls, HandsOverEverythingWithoutTakingItForTold) {
  sut.add(0, kKey, 5, false);
  sut.add(1, kKey, 5, true);
  for (int time = 0; time < 2; ++time) {
    std::vector<CallFigures> all;
    sut.visitAll([&](const CallKey& key, const CallFigures& figures) {
      EXPECT_EQ(key, kKey);
      all.push_back(figures);
    });
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].count, 2U);
    EXPECT_EQ(all[0].failures, 1U);
  }
  EXPECT_EQ(changed().size(), 1U);
}

TEST_F(ATallyOfCalls, LetsOthersCountWhileWhatItHandsOverIsPutTogether) {
  for (int number = 0; number < 20; ++number) {
    sut.add(0, {"/from", std::to_string(number) + "/with/a/name/that/takes/memory", "", ""}, 1,
            false);
  }
  std::atomic<unsigned> added{0};
  std::jthread adding([&](const std::stop_token& ended) {
    for (; !ended.stop_requested(); ++added) sut.add(0, kKey, 1, false);
  });
  bool waited = false;
  unsigned allocations = 0;
  const std::function<void()> addMeanwhile = [&] {
    ++allocations;
    const unsigned before = added;
    waited = waited || !waitUntil([&] { return added > before + 1; }, std::chrono::seconds(2));
  };
  beforeEachAllocation(&addMeanwhile);
  sut.visitAll([](const CallKey&, const CallFigures&) {});
  sut.visitChanged([](const CallKey&, const CallFigures&) {});
  beforeEachAllocation(nullptr);
  EXPECT_GT(allocations, 40U);
  EXPECT_FALSE(waited);
}

TEST(ATallyOfFewCalls, TakesAsManyKeysAsItWasMadeFor) {
  CallTally sut(1);
  EXPECT_TRUE(sut.add(0, kKey, 1, false));
  EXPECT_TRUE(sut.add(0, kKey, 1, false));
  EXPECT_FALSE(sut.add(0, {"/other", "/to", "Ifc", "method"}, 1, false));
}

TEST_F(ATallyOfCalls, TakesNoMoreKeysThanItHasRoomFor) {
  std::size_t refused = 0;
  for (int number = 0; number < 2000; ++number) {
    const std::string channel = std::to_string(number);
    if (!sut.add(0, {"", channel, "", ""}, 1, false)) ++refused;
  }
  EXPECT_GT(refused, 0U);
  EXPECT_EQ(changed().size() + refused, 2000U);
}

}  // namespace
}  // namespace zerva
