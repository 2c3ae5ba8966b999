#include <gtest/gtest.h>
#include <unistd.h>

#include <stdexcept>

#include "host/notify/NotifySocket.h"
#include "tests/notify/NotifyListener.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

TEST(ANotifySocket, SendsToAPath) {
  const TempDirectory directory;
  NotifyListener listener(directory.file("notify"));
  const NotifySocket sut(directory.file("notify"));
  EXPECT_TRUE(sut.send("READY=1\nSTATUS=up"));
  EXPECT_TRUE(sut.trySend("WATCHDOG=1"));
  EXPECT_EQ(listener.messages(), (std::vector<std::string>{"READY=1\nSTATUS=up", "WATCHDOG=1"}));
}

TEST(ANotifySocket, SendsToAnAbstractName) {
  const std::string address = "@zerva-notify-test-" + std::to_string(getpid());
  NotifyListener listener(address);
  const NotifySocket sut(address);
  EXPECT_TRUE(sut.send("READY=1"));
  EXPECT_TRUE(listener.has("READY=1"));
}

TEST(ANotifySocket, OfNobodySendsNothing) {
  const NotifySocket sut("");
  EXPECT_FALSE(sut.isThere());
  EXPECT_FALSE(sut.send("READY=1"));
}

TEST(ANotifySocket, SaysThatItSentNothingWhenNobodyListens) {
  const TempDirectory directory;
  const NotifySocket sut(directory.file("nobody"));
  EXPECT_TRUE(sut.isThere());
  EXPECT_FALSE(sut.send("READY=1"));
}

TEST(ANotifySocket, DoesNotWaitWithWhatTheNextOneMakesUpFor) {
  const TempDirectory directory;
  const NotifyListener listener(directory.file("notify"));
  const NotifySocket sut(directory.file("notify"));
  int sent = 0;
  while (sent < 1'000'000 && sut.trySend("WATCHDOG=1")) ++sent;
  EXPECT_GT(sent, 0);
  EXPECT_LT(sent, 1'000'000);
}

TEST(ANotifySocket, IsNeitherOfAnotherKindNorLongerThanTheSystemAllows) {
  for (const std::string& bad : {std::string("relative"), std::string("vsock:2:1"),
                                 std::string("/"), std::string("@"), "/" + std::string(107, 'x')}) {
    EXPECT_THROW(NotifySocket sut(bad), std::runtime_error) << bad;
  }
  const NotifySocket longest("/" + std::string(106, 'x'));
  EXPECT_TRUE(longest.isThere());
}

}  // namespace
}  // namespace zerva
