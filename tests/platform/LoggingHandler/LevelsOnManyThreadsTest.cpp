#include <atomic>
#include <cstddef>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/platform/LoggingHandler/LoggingTest.h"
#include "tests/platform/RecordingSink.h"
#include "tests/support/Concurrently.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

/** Levels that were asked for before, which is when a thread may answer from what it has kept. */
class LogLevelsAskedForAgain : public LoggingTest {
 protected:
  bool on(int level) const { return loggingOnAppUni(module.c_str(), level); }
};

/** Asks on a thread of its own, again and again. */
class Asking {
 public:
  explicit Asking(std::string module) : module_(std::move(module)) {}
  ~Asking() {
    stop_ = true;
    thread_.join();
  }
  Asking(const Asking&) = delete;
  Asking& operator=(const Asking&) = delete;

  /** The level up to which the thread finds the module on; -1 as long as it has not asked. */
  int highest() const { return highest_; }

 private:
  void ask() {
    while (!stop_) {
      int level = 0;
      while (loggingOnAppUni(module_.c_str(), level + 1)) ++level;
      highest_ = level;
      std::this_thread::yield();
    }
  }

  const std::string module_;
  std::atomic<int> highest_{-1};
  std::atomic<bool> stop_{false};
  std::thread thread_{[this] { ask(); }};
};

TEST_F(LogLevelsAskedForAgain, FollowEveryChange) {
  LogSettings::setDefaultLevel(6);
  EXPECT_TRUE(on(6));
  LogSettings::setLevel(module, 5);
  EXPECT_FALSE(on(6));
  LogSettings::setLevel(module, 7);
  EXPECT_TRUE(on(7));
  LogSettings::setLevel("another one of " + module, 9);
  EXPECT_FALSE(on(8));
  {
    const RecordingSink sink("", 8);
    EXPECT_TRUE(on(8));
  }
  EXPECT_FALSE(on(8));
  EXPECT_TRUE(on(7));
  LogSettings::setLevel("another one of " + module, 4);
}

TEST_F(LogLevelsAskedForAgain, AreSeenToChangeByThreadsThatRunAlready) {
  const Asking first(module);
  const Asking second(module);
  const Asking stranger("not " + module);
  for (const int level : {5, 9, 1, 7}) {
    LogSettings::setLevel(module, level);
    ASSERT_TRUE(waitUntil([&] { return first.highest() == level && second.highest() == level; }));
  }
  EXPECT_TRUE(waitUntil([&] { return stranger.highest() == 4; }));
}

// What was kept under the address of a text once could have answered for the next text there.
TEST_F(LogLevelsAskedForAgain, AreThoseOfTheTextAndNotOfWhereItIs) {
  LogSettings::setLevel(module, 6);
  std::string text = module;
  ASSERT_TRUE(loggingOnAppUni(text.c_str(), 6));
  text[0] = 'm';
  EXPECT_FALSE(loggingOnAppUni(text.c_str(), 6));
}

TEST_F(LogLevelsAskedForAgain, TellLongNamesApartThatBeginAlike) {
  const std::string common(200, 'x');
  const std::string raised = common + module;
  LogSettings::setLevel(raised, 6);
  std::string text = raised;
  EXPECT_TRUE(loggingOnAppUni(text.c_str(), 6));
  text.replace(common.size(), std::string::npos, "other");
  EXPECT_FALSE(loggingOnAppUni(text.c_str(), 6));
  LogSettings::setLevel(raised, 4);
}

TEST_F(LogLevelsAskedForAgain, AreThoseOfEachOfManyModulesOnEveryThread) {
  constexpr int kModules = 300;
  const auto levelOf = [](int number) { return number % 10; };
  std::vector<std::string> modules;
  for (int number = 0; number < kModules; ++number) {
    modules.push_back(module + " part " + std::to_string(number));
    LogSettings::setLevel(modules.back(), levelOf(number));
  }
  std::atomic<int> wrong{0};
  concurrently(4, [&](std::size_t thread) {
    for (int step = 0; step < 3 * kModules; ++step) {
      const int number = (step * (2 * static_cast<int>(thread) + 1)) % kModules;
      const char* const name = modules[static_cast<std::size_t>(number)].c_str();
      if (levelOf(number) > 0 && !loggingOnAppUni(name, levelOf(number))) ++wrong;
      if (loggingOnAppUni(name, levelOf(number) + 1)) ++wrong;
    }
  });
  EXPECT_EQ(wrong, 0);
  for (const std::string& name : modules) LogSettings::setLevel(name, 4);
}

TEST_F(LogLevelsAskedForAgain, HoldAsSoonAsTheyAreSetWhileOtherThreadsAskAndChange) {
  std::atomic<bool> wrong{false};
  concurrently(4, [&](std::size_t thread) {
    const std::string own = module + " of thread " + std::to_string(thread);
    for (int round = 0; round < 500; ++round) {
      const int level = 4 + round % 4;
      LogSettings::setLevel(own, level);
      wrong =
          wrong || !loggingOnAppUni(own.c_str(), level) || loggingOnAppUni(own.c_str(), level + 1);
    }
    LogSettings::setLevel(own, 4);
  });
  EXPECT_FALSE(wrong);
}

}  // namespace
}  // namespace zerva
