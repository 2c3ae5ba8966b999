// A host under a service manager: whole processes, with a socket of the test's own in place of the
// manager's.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <string>

#include "tests/notify/NotifyListener.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string plain = "service_instance: ST libPlain.so createPlain /test/plain PlainIfc\n";

class AManagedHost : public testing::Test {
 protected:
  AManagedHost() : listener(directory.file("notify")) {}

  std::map<std::string, std::string> environment(const std::string& watchdog = "") const {
    std::map<std::string, std::string> all{{"NOTIFY_SOCKET", directory.file("notify")}};
    if (!watchdog.empty()) all["WATCHDOG_USEC"] = watchdog;
    return all;
  }

  std::vector<std::string> run(const std::string& lines,
                               const std::vector<std::string>& more = {}) const {
    const std::string build = ZERVA_BUILD_DIRECTORY;
    std::vector<std::string> words{"run",       directory.write("services", lines),
                                   "--lib-dir", build + "/plugins",
                                   "--lib-dir", build + "/lib"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

  const TempDirectory directory;
  NotifyListener listener;
  const std::string zerva = ZERVA_BUILD_DIRECTORY "/bin/zerva";
};

TEST_F(AManagedHost, IsReadyWhenEveryDirectiveIsThroughAndTellsWhenItStops) {
  ChildProcess sut(zerva, run(plain + plain), environment());
  ASSERT_TRUE(listener.waitFor("READY=1\nSTATUS=2 services up"));
  EXPECT_FALSE(listener.has("STOPPING=1"));
  sut.signal(SIGTERM);
  EXPECT_EQ(sut.wait(), 0);
  EXPECT_TRUE(listener.has("STOPPING=1\nSTATUS=stopping"));
  EXPECT_FALSE(listener.has("WATCHDOG=1"));
}

TEST_F(AManagedHost, SaysWhatItsStartWaitsForAndIsNotReadyMeanwhile) {
  const std::string hanging =
      "service_instance: ST libHangingInit.so createHangingInit /test/hanging HangingIfc\n";
  ChildProcess sut(zerva, run(plain + hanging), environment());
  ASSERT_TRUE(listener.waitFor("STATUS=starting, waits for init of HangingInitService"));
  EXPECT_FALSE(listener.has("READY=1"));
  EXPECT_FALSE(listener.has("STOPPING=1"));
}

TEST_F(AManagedHost, SaysForWhichChannelItWaits) {
  ChildProcess sut(zerva, run(plain, {"--await", "/nobody=100"}), environment());
  ASSERT_TRUE(listener.waitFor("STATUS=starting, waits for channel /nobody"));
  sut.signal(SIGTERM);
  EXPECT_EQ(sut.wait(), 0);
  EXPECT_FALSE(listener.has("READY=1"));
}

TEST_F(AManagedHost, IsNeverReadyWhenAnExceptionEndsTheStart) {
  const std::string throwing =
      "service_instance: ST libThrowingInit.so createThrowingInit /test/throwing ThrowingIfc\n";
  ChildProcess sut(zerva, run(plain + throwing), environment());
  EXPECT_NE(sut.wait(), 0);
  EXPECT_FALSE(listener.has("READY=1"));
}

TEST_F(AManagedHost, GivesSignsOfLifeWhileItsExecutorsAnswer) {
  const std::string asking =
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n"
      "service_info: ST libPlain.so createPlain /test/plain PlainIfc\n";
  ChildProcess sut(zerva, run(asking), environment("400000"));
  ASSERT_TRUE(listener.waitFor("READY=1"));
  for (int count = 0; count < 10; ++count) ASSERT_TRUE(listener.waitForAnother("WATCHDOG=1"));
  sut.signal(SIGTERM);
  EXPECT_EQ(sut.wait(), 0);
  EXPECT_FALSE(listener.has("stuck"));
  // Nothing was sent to the lazy service, so there is none.
  EXPECT_THAT(sut.output(), Not(HasSubstr("up       PlainIfc")));
}

TEST_F(AManagedHost, GivesSignsOfLifeWhileALazyServiceIsBeingMade) {
  const std::string making =
      "service_info: ST libHangingInit.so createHangingInit /test/asked AskedIfc\n"
      "service_instance: ST libKnocking.so createKnocking /test/knocking KnockingIfc\n";
  ChildProcess sut(zerva, run(making), environment("400000"));
  ASSERT_TRUE(sut.waitForErrors("init hangs"));
  // Longer than it takes to count as stuck.
  for (int count = 0; count < 10; ++count) ASSERT_TRUE(listener.waitForAnother("WATCHDOG=1"));
  EXPECT_FALSE(listener.has("stuck"));
}

TEST_F(AManagedHost, GivesNoSignOfLifeWhenSomethingIsQueuedAndNothingMoves) {
  // One asks the other, which never answers; meanwhile its own timer is not served.
  const std::string stuck =
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n";
  ChildProcess sut(zerva, run(stuck, {"--reply-timeout", "1000"}), environment("400000"));
  ASSERT_TRUE(listener.waitFor("STATUS=stuck: AskingService"));
  EXPECT_TRUE(sut.waitForErrors("no sign of life is sent"));
  // Longer than it takes twice.
  EXPECT_FALSE(listener.waitForAnother("WATCHDOG=1", std::chrono::milliseconds(500)));
}

TEST_F(AManagedHost, IsNotCalledStuckAsLongAsItStarts) {
  const std::string starting =
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n"
      "service_instance: ST libHangingInit.so createHangingInit /test/hanging HangingIfc\n";
  ChildProcess sut(zerva, run(starting, {"--reply-timeout", "1000"}), environment("400000"));
  ASSERT_TRUE(listener.waitFor("STATUS=starting, waits for init of HangingInitService"));
  // Longer than it takes to count as stuck.
  for (int count = 0; count < 10; ++count) ASSERT_TRUE(listener.waitForAnother("WATCHDOG=1"));
  EXPECT_FALSE(listener.has("stuck"));
}

TEST_F(AManagedHost, IsStuckNoLongerWhenTheAnswerComesAfterAll) {
  const std::string slow =
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n";
  ChildProcess sut(zerva, run(slow, {"--reply-timeout", "2"}), environment("400000"));
  ASSERT_TRUE(listener.waitFor("STATUS=stuck: AskingService"));
  EXPECT_TRUE(sut.waitForErrors("all executors answer again"));
  EXPECT_TRUE(listener.waitForAnother("WATCHDOG=1"));
}

TEST_F(AManagedHost, DoesNotHandTheManagersSocketToWhatItStarts) {
  const std::string nested = directory.write("nested", plain);
  const std::string build = ZERVA_BUILD_DIRECTORY;
  const std::string lines =
      plain + "start_process: " + zerva + " run --lib-dir " + build + "/plugins " + nested + "\n";
  ChildProcess sut(zerva, run(lines), environment());
  ASSERT_TRUE(sut.waitForOutput("zerva: starts " + nested));
  sut.signal(SIGTERM);
  EXPECT_EQ(sut.wait(), 0);
  int ready = 0;
  for (const std::string& message : listener.messages()) {
    if (message.find("READY=1") != std::string::npos) ++ready;
  }
  EXPECT_EQ(ready, 1);
}

TEST_F(AManagedHost, RunsWithoutAManagerWhenTheSocketCannotBeUsed) {
  ChildProcess sut(zerva, run(plain, {"--for", "0"}), {{"NOTIFY_SOCKET", "nonsense"}});
  EXPECT_EQ(sut.wait(), 0);
  EXPECT_THAT(sut.errors(), HasSubstr("zerva: the service manager is not told anything, "
                                      "NOTIFY_SOCKET is 'nonsense': "));
}

}  // namespace
}  // namespace zerva
