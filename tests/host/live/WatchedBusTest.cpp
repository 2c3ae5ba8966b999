// A bus that is looked at again and again.

#include <signal.h>

#include <cstddef>

#include "tests/host/live/HostsOnABus.h"
#include "tests/support/Terminal.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::Not;

using AWatch = HostsOnABus;

std::size_t tables(const std::string& output) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = output.find("INTERFACES", at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST_F(AWatch, ShowsTheBusAsOftenAsItWasAskedTo) {
  startAll(kPlainLine);
  const Seen sut = zerva("watch", {"--every", "0.01", "--count", "3"});
  EXPECT_EQ(sut.code, 0) << sut.errors;
  EXPECT_EQ(tables(sut.output), 3U);
  EXPECT_THAT(sut.output, Not(HasSubstr("\x1b"))) << "it is no terminal";
}

TEST_F(AWatch, OnATerminal_ShowsEachLookInThePlaceOfTheOneBefore) {
  startAll(kPlainLine);
  const Shown sut =
      runOnATerminal(build + "/bin/zerva watch --bus " + bus + " --every 0.01 --count 3");
  EXPECT_EQ(sut.code, 0);
  EXPECT_EQ(tables(sut.text), 3U);
  std::size_t cleared = 0;
  const std::string homeAndClear = "\x1b[H\x1b[2J\x1b[3J";
  for (std::size_t at = 0; (at = sut.text.find(homeAndClear, at)) != std::string::npos; ++at) {
    ++cleared;
    EXPECT_EQ(sut.text.compare(at + homeAndClear.size(), 8, "process "), 0);
  }
  EXPECT_EQ(cleared, 3U);
  EXPECT_EQ(sut.text.find(homeAndClear), 0U);
}

TEST_F(AWatch, GoesOnUntilASignalAndEndsInOrder) {
  startAll(kPlainLine);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    ChildProcess sut(build + "/bin/zerva", {"watch", "--bus", bus, "--every", "0.01"});
    EXPECT_TRUE(waitUntil([&] { return tables(sut.output()) > 2; }));
    sut.signal(signal);
    EXPECT_EQ(sut.wait(), 0);
  }
}

TEST_F(AWatch, SeesAProcessComeAndGo) {
  ChildProcess sut(build + "/bin/zerva", {"watch", "--bus", bus, "--every", "0.01"});
  ASSERT_TRUE(sut.waitForOutput("no process is on the bus"));
  ChildProcess& host = start(kPlainLine);
  EXPECT_TRUE(sut.waitForOutput("PlainIfc    running"));
  host.signal(SIGTERM);
  EXPECT_EQ(host.wait(), 0);
  const std::size_t then = sut.output().size();
  EXPECT_TRUE(waitUntil(
      [&] { return sut.output().find("no process is on the bus", then) != std::string::npos; }));
}

TEST_F(AWatch, TellsWhatIsStuckBetweenTwoLooks) {
  startAll(
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n",
      {"--status", "--reply-timeout", "1000"});
  ChildProcess sut(build + "/bin/zerva", {"watch", "--bus", bus, "--every", "0.1"});
  EXPECT_TRUE(sut.waitForOutput("AskingIfc   running, stuck"));
  sut.signal(SIGTERM);
  EXPECT_EQ(sut.wait(), 3);
}

TEST_F(AWatch, OfABusThatIsNotThere_Fails) {
  ChildProcess sut(build + "/bin/zerva", {"watch", "--bus", directory.file("missing")});
  EXPECT_EQ(sut.wait(), 10);
}

}  // namespace
}  // namespace zerva
