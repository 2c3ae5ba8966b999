#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "runtime/libClientUtils/Spares.h"
#include "runtime/libClientUtils/Texts.h"

namespace {

using zerva::newText;
using zerva::SpareKind;
using zerva::Spares;

struct Thing {
  Thing() { ++there; }
  ~Thing() { --there; }
  Thing(const Thing&) = delete;
  Thing& operator=(const Thing&) = delete;

  zerva::Spare spare;
  std::atomic<bool> taken{false};
  static inline std::atomic<int> there{0};
};

constinit Spares sut(SpareKind::Unused, [](void* thing) { delete static_cast<Thing*>(thing); });

Thing* taken() { return static_cast<Thing*>(sut.take()); }

/** Begins and ends with nothing that is kept. */
class SparesOfAKind : public testing::Test {
 protected:
  static void TearDownTestSuite() { EXPECT_EQ(Thing::there, 0); }
  void TearDown() override {
    while (Thing* const thing = taken()) delete thing;
    EXPECT_EQ(Thing::there, 0);
  }
};

void inAnotherThread(const std::function<void()>& work) { std::thread(work).join(); }

void give(std::size_t count) {
  for (std::size_t left = count; left > 0; --left) sut.give(new Thing);
}

TEST_F(SparesOfAKind, GivesWhatItWasGiven) {
  auto* const thing = new Thing;
  sut.give(thing);
  EXPECT_EQ(sut.take(), thing);
  EXPECT_EQ(sut.take(), nullptr);
  delete thing;
}

TEST_F(SparesOfAKind, GivesEachOnce) {
  constexpr std::size_t kSome = 5 * Spares::kMostInRow + 1;
  give(kSome);
  std::set<void*> all;
  while (void* const thing = sut.take()) all.insert(thing);
  EXPECT_EQ(all.size(), kSome);
  for (void* const thing : all) sut.give(thing);
}

TEST_F(SparesOfAKind, GivesToAnotherThreadWhatAThreadHadThatEnded) {
  constexpr int kSome = Spares::kMostInRow + 3;
  inAnotherThread([] { give(kSome); });
  EXPECT_EQ(Thing::there, kSome);
  for (int left = kSome; left > 0; --left) {
    const std::unique_ptr<Thing> thing(taken());
    EXPECT_NE(thing, nullptr);
  }
}

TEST_F(SparesOfAKind, GivesToAnotherThreadWhatABusyOneHasTooMany) {
  give(2 * Spares::kMostInRow + 1);
  inAnotherThread([] {
    const std::unique_ptr<Thing> thing(taken());
    EXPECT_NE(thing, nullptr);
  });
}

TEST_F(SparesOfAKind, LeavesAThreadThatHasNothingToDoAFew) {
  give(Spares::kMostOfIdle);
  Spares::idle();
  inAnotherThread([] { EXPECT_EQ(sut.take(), nullptr); });
  give(1);
  Spares::idle();
  inAnotherThread([] {
    const std::unique_ptr<Thing> thing(taken());
    EXPECT_NE(thing, nullptr);
  });
}

TEST_F(SparesOfAKind, FreesWhatIsTooMany) {
  give(2 * Spares::kMostInStore);
  EXPECT_LE(Thing::there, static_cast<int>(Spares::kMostInStore + 2 * Spares::kMostInRow));
  EXPECT_GE(Thing::there, static_cast<int>(Spares::kMostInStore));
}

Thing* takenOrNew() {
  Thing* const thing = taken();
  return thing != nullptr ? thing : new Thing;
}

void giveBack(std::vector<Thing*>& held) {
  for (Thing* const one : held) {
    one->taken.store(false, std::memory_order_relaxed);
    sut.give(one);
  }
  held.clear();
}

/** Takes so many before it gives them back, as those who send and those who serve. */
void takeAndGive(std::size_t atATime, bool idles) {
  constexpr int kRounds = 2000;
  std::vector<Thing*> held;
  for (int round = 0; round < kRounds; ++round) {
    held.push_back(takenOrNew());
    EXPECT_FALSE(held.back()->taken.exchange(true, std::memory_order_relaxed));
    if (held.size() == atATime) giveBack(held);
    if (idles && held.empty()) Spares::idle();
  }
  giveBack(held);
}

TEST_F(SparesOfAKind, GivesNothingToTwoThreadsAtATime) {
  std::vector<std::thread> threads;
  for (const std::size_t atATime : {20U, 50U, 100U, 150U}) {
    threads.emplace_back([atATime] { takeAndGive(atATime, atATime == 50U); });
  }
  for (auto& thread : threads) thread.join();
}

TEST(ATextOfAMessage, IsEmptyWhateverTheOneBeforeHeld) {
  *newText() = "somebody's secret";
  EXPECT_EQ(*newText(), "");
}

TEST(ATextOfAMessage, ThatSomebodyStillHas_IsNobodyElses) {
  zerva::Payload others;
  {
    const zerva::Payload own = zerva::textOfBytes("a text that is too long for no memory");
    others = own;
  }
  EXPECT_NE(others, zerva::textOfBytes("another"));
  EXPECT_EQ(*others, "a text that is too long for no memory");
}

TEST(ATextOfAMessage, KeepsTheMemoryOfAShortOneAndNotThatOfALongOne) {
  constexpr std::size_t kShort = 120;
  constexpr std::size_t kLong = 5000;
  const std::string* kept = nullptr;
  {
    const auto text = newText();
    text->assign(kShort, 'x');
    kept = text.get();
  }
  {
    const auto text = newText();
    EXPECT_EQ(text.get(), kept);
    EXPECT_GE(text->capacity(), kShort);
    text->assign(kLong, 'x');
  }
  EXPECT_LT(newText()->capacity(), kLong);
}

TEST(ATextOfAMessage, LivesAsLongAsSomebodyKnowsOfItAtAll) {
  std::weak_ptr<std::string> known;
  {
    const auto text = newText();
    known = text;
  }
  EXPECT_TRUE(known.expired());
  const auto another = newText();
  *another = "another";
  EXPECT_EQ(known.lock(), nullptr);
}

}  // namespace
