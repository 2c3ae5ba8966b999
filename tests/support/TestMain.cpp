// The main function of every test program: GoogleTest's own, and a watchdog on each test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>

#include <chrono>
#include <cstdlib>
#include <string>

#include "tests/support/Watchdog.h"

namespace {

/** What the build says a test may take, which is less than what ctest waits for. */
std::chrono::seconds limitOfATest() {
  const char* seconds = std::getenv("ZERVA_TEST_SECONDS");
  return std::chrono::seconds{seconds == nullptr ? 100 : std::atoi(seconds)};
}

/** From here on this thread, and the threads and processes that it starts, have one processor. */
void stayOnOneProcessor() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  sched_getaffinity(0, sizeof allowed, &allowed);
  int first = 0;
  while (first < CPU_SETSIZE && !CPU_ISSET(first, &allowed)) ++first;
  CPU_ZERO(&allowed);
  CPU_SET(first, &allowed);
  if (sched_setaffinity(0, sizeof allowed, &allowed) != 0) std::abort();
}

class WatchEachTest : public testing::EmptyTestEventListener {
 public:
  void OnTestStart(const testing::TestInfo& test) override {
    watchdog.set(std::string{test.test_suite_name()} + "." + test.name(), limitOfATest());
  }
  void OnTestEnd(const testing::TestInfo&) override { watchdog.release(); }

 private:
  zerva::Watchdog watchdog;
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (std::getenv("ZERVA_TEST_ON_ONE_PROCESSOR") != nullptr) stayOnOneProcessor();
  // Nothing is watched where tests are only listed; GoogleTest deletes the listener at the end.
  testing::UnitTest::GetInstance()->listeners().Append(new WatchEachTest);
  return RUN_ALL_TESTS();
}
