// Hosts that are looked at from outside while they run, each a process.

#include <signal.h>
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/host/live/HostsOnABus.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using AHostThatTellsHowItIs = HostsOnABus;
using AHostThatDoesNotTellHowItIs = HostsOnABus;
using TheStatus = HostsOnABus;

const std::string kLazyLine = "service_info: ST libPlain.so createPlain /test/lazy LazyIfc\n";
const std::string kHangingInitLine =
    "service_instance: ST libHangingInit.so createHangingInit /test/hanging HangingIfc\n";

TEST_F(AHostThatTellsHowItIs, IsShownWithItsServices) {
  const ChildProcess& host = startAll(kRegistryLine + kPlainLine + kLazyLine);
  const Seen sut = zerva("status");
  EXPECT_EQ(sut.code, 0) << sut.errors;
  EXPECT_THAT(sut.output,
              StartsWith("process " + std::to_string(host.id()) + ", running, up for "));
  EXPECT_THAT(sut.output, HasSubstr("\n  INTERFACES "));
  EXPECT_THAT(sut.output,
              HasSubstr("\n  ServiceRegistryIfc  running  /zerva/serviceregistry  MT "));
  EXPECT_THAT(sut.output, HasSubstr("\n  PlainIfc            running  /test/plain "));
  EXPECT_THAT(sut.output, HasSubstr("\n  LazyIfc             lazy     /test/lazy "));
}

TEST_F(AHostThatTellsHowItIs, IsAnsweringWhileAnInitHangs) {
  const ChildProcess& host = start(kPlainLine + kHangingInitLine + kLazyLine);
  ASSERT_TRUE(waitForService(host, "HangingIfc", "doing",
                             "init of HangingInitService of libHangingInit.so"));
  EXPECT_EQ(service(host, "HangingIfc").at("state"), "initialising");
  EXPECT_EQ(service(host, "PlainIfc").at("state"), "running");
  EXPECT_EQ(service(host, "LazyIfc").at("state"), "waiting");
  EXPECT_EQ(status(host).at("phase"), "starting");
  EXPECT_EQ(status(host).at("waits_for"), "init of HangingInitService of libHangingInit.so");
}

TEST_F(AHostThatTellsHowItIs, IsAnsweringWhileItWaitsForAChannel) {
  const ChildProcess& host = start(kPlainLine, {"--status", "--await", "/nobody"});
  ASSERT_TRUE(waitUntil([&] { return status(host).value("waits_for", "") == "channel /nobody"; }));
  EXPECT_EQ(status(host).at("phase"), "waiting");
  EXPECT_EQ(service(host, "PlainIfc").at("state"), "waiting");
}

TEST_F(AHostThatTellsHowItIs, ShowsWhatIsStuck) {
  const ChildProcess& host = startAll(
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n",
      {"--status", "--reply-timeout", "1000"});
  ASSERT_TRUE(waitForService(host, "AskingIfc", "stuck", true));
  EXPECT_EQ(service(host, "AskedIfc").at("stuck"), false) << "nothing is queued there";
  EXPECT_EQ(service(host, "AskedIfc").at("executor").at("serving"), 1);
  const Seen sut = zerva("status");
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.output, HasSubstr("AskingIfc   running, stuck "));
  EXPECT_EQ(zerva("status", {"AskingIfc"}).code, 3);
  EXPECT_EQ(zerva("status", {"AskedIfc"}).code, 0);
}

TEST_F(AHostThatTellsHowItIs, MakesNoLazyServiceByBeingLookedAt) {
  ChildProcess& host = startAll(kLazyLine);
  for (int looks = 0; looks < 5; ++looks) EXPECT_EQ(zerva("status", {"LazyIfc"}).code, 0);
  EXPECT_EQ(service(host, "LazyIfc").at("state"), "lazy");
  EXPECT_EQ(service(host, "LazyIfc").at("executor").at("requests"), 0);
  host.signal(SIGTERM);
  EXPECT_EQ(host.wait(), 0);
  EXPECT_THAT(host.output(), Not(HasSubstr("up       LazyIfc")));
}

TEST_F(AHostThatTellsHowItIs, ShowsALazyServiceThatWasMade) {
  const ChildProcess& host = startAll(
      "service_info: ST libPlain.so createPlain /test/asked LazyIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  ASSERT_TRUE(waitForService(host, "LazyIfc", "state", "running"));
  EXPECT_EQ(service(host, "LazyIfc").at("mode"), "ST, lazy");
  EXPECT_THAT(service(host, "LazyIfc").at("type"), HasSubstr("PlainService"));
}

TEST_F(AHostThatTellsHowItIs, ShowsALazyServiceWhoseInitHangs) {
  const ChildProcess& host = startAll(
      "service_info: ST libHangingInit.so createHangingInit /test/asked LazyIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  ASSERT_TRUE(waitForService(host, "LazyIfc", "state", "initialising"));
  EXPECT_TRUE(
      waitForService(host, "LazyIfc", "doing", "init of HangingInitService of libHangingInit.so"));
}

TEST_F(AHostThatTellsHowItIs, ShowsALazyServiceWhoseInitThrows) {
  const ChildProcess& host = startAll(
      "service_info: ST libThrowingInit.so createThrowingInit /test/asked LazyIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  ASSERT_TRUE(waitForService(host, "LazyIfc", "state", "failed"));
  EXPECT_EQ(service(host, "LazyIfc").at("why"), "init does not work here");
}

TEST_F(AHostThatTellsHowItIs, ShowsWhichOfTwoLazyServicesOfAMissingLibraryFailed) {
  const ChildProcess& host = startAll(
      "service_info: ST libMissing.so createIt /test/lazy LazyIfc\n"
      "service_info: ST libMissing.so createIt /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  ASSERT_TRUE(waitForService(host, "AskedIfc", "state", "failed"));
  EXPECT_EQ(service(host, "LazyIfc").at("state"), "lazy");
  EXPECT_THAT(host.output(), HasSubstr("failed   AskedIfc"));
  EXPECT_THAT(host.output(), Not(HasSubstr("failed   LazyIfc")));
}

TEST_F(AHostThatTellsHowItIs, ShowsWhyAServiceFailed) {
  const ChildProcess& host = startAll(
      "service_instance: ST libMissing.so createMissing /test/missing MissingIfc\n" + kPlainLine);
  EXPECT_EQ(service(host, "MissingIfc").at("state"), "failed");
  EXPECT_THAT(service(host, "MissingIfc").at("why"), HasSubstr("libMissing.so"));
  EXPECT_EQ(service(host, "PlainIfc").at("state"), "running");
  const Seen sut = zerva("status");
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.output, HasSubstr("\n    failed: "));
}

TEST_F(AHostThatTellsHowItIs, CountsWhatFails) {
  const ChildProcess& host = startAll(
      "service_instance: ST libThrowingRequest.so createThrowingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  EXPECT_TRUE(waitUntil([&] {
    const auto executor = service(host, "AskedIfc").at("executor");
    return executor.at("errors") > 1 && executor.at("errors") <= executor.at("requests");
  }));
  EXPECT_EQ(service(host, "AskingIfc").at("executor").at("errors"), 0);
}

TEST_F(AHostThatTellsHowItIs, IsAnsweringWhileAStopHangs) {
  ChildProcess& host = startAll(
      "service_instance: ST libHangingStop.so createHangingStop /test/hanging HangingIfc\n");
  host.signal(SIGTERM);
  ASSERT_TRUE(waitUntil([&] { return status(host).value("phase", "") == "stopping"; }));
  EXPECT_EQ(service(host, "HangingIfc").at("state"), "stopping");
  EXPECT_THAT(status(host).at("waits_for"), HasSubstr("the stop of "));
  EXPECT_THAT(status(host).at("channels"), testing::SizeIs(1)) << "all others are closed";
}

TEST_F(AHostThatTellsHowItIs, IsAnsweringWhileARequestKeepsItFromEnding) {
  ChildProcess& host = startAll(
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n",
      {"--status", "--stop-timeout", "1000"});
  startAll("service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n");
  ASSERT_TRUE(
      waitUntil([&] { return service(host, "AskedIfc").at("executor").at("serving") == 1; }));
  host.signal(SIGTERM);
  ASSERT_TRUE(waitUntil([&] { return status(host).value("phase", "") == "draining"; }));
  const std::string waitsFor = status(host).at("waits_for");
  EXPECT_THAT(waitsFor, HasSubstr("HangingRequestService"));
  EXPECT_THAT(waitsFor, Not(HasSubstr("HostStatus")));
}

TEST_F(AHostThatTellsHowItIs, SaysWhatKeepsItsTimersFromEnding) {
  ChildProcess& host = startAll(
      "service_instance: ST libHangingRequest.so createHangingRequest /test/asked AskedIfc\n"
      "service_instance: ST libAsking.so createAsking /test/asking AskingIfc\n",
      {"--status", "--reply-timeout", "1000"});
  ASSERT_TRUE(
      waitUntil([&] { return service(host, "AskedIfc").at("executor").at("serving") == 1; }));
  host.signal(SIGTERM);
  ASSERT_TRUE(waitUntil([&] { return status(host).value("phase", "") == "stopping"; }));
  EXPECT_TRUE(waitUntil(
      [&] { return status(host).at("waits_for") == "a timer's owner that is being called"; }));
}

/** @returns the text with something else for each part that is between two others. */
std::string without(std::string text, const std::string& before, const std::string& after) {
  for (std::size_t at = text.find(before); at != std::string::npos; at = text.find(before, at)) {
    at += before.size();
    const std::size_t end = text.find(after, at);
    if (end == std::string::npos) break;
    text.replace(at, end - at, "?");
  }
  return text;
}

/** @returns the lines without what differs from run to run. */
std::string comparable(const std::string& text) {
  return without(without(text, "starts ", "\n"), "init took ", " ms");
}

TEST_F(AHostThatTellsHowItIs, DoesAndPrintsWhatItWouldWithoutThat) {
  const std::string lines = kRegistryLine + kPlainLine +
                            "service_instance: MT libPlain.so createPlain /test/a AIfc ZIfc\n" +
                            kLazyLine;
  std::vector<std::string> printed;
  for (const bool tells : {true, false}) {
    ChildProcess& host =
        start(lines, tells ? std::vector<std::string>{"--status"} : std::vector<std::string>());
    ASSERT_TRUE(host.waitForOutput("LazyIfc"));
    if (tells) zerva("status");
    host.signal(SIGTERM);
    EXPECT_EQ(host.wait(), 0);
    printed.push_back(comparable(host.output()));
  }
  EXPECT_EQ(printed[0], printed[1]);
  EXPECT_THAT(printed[0], HasSubstr("deleted"));
}

TEST_F(AHostThatTellsHowItIs, LetsTheHostsThatItStartsTellToo) {
  const std::string nested = directory.write("nested", kPlainLine);
  startAll("start_process: " + build + "/bin/zerva run --lib-dir " + build + "/plugins " + nested +
           "\n");
  EXPECT_TRUE(waitUntil(
      [&] { return zerva("status").output.find("\n  PlainIfc    running") != std::string::npos; }));
}

TEST_F(AHostThatTellsHowItIs, IsAskedToByTheEnvironment) {
  const ChildProcess& host = start(kPlainLine, {}, {{"ZERVA_STATUS", "1"}});
  EXPECT_TRUE(waitForService(host, "PlainIfc", "state", "running"));
}

TEST_F(AHostThatTellsHowItIs, IsShownAsSilentWhenItDoesNotAnswer) {
  ChildProcess& silent = startAll(kPlainLine);
  const ChildProcess& other = startAll(kLazyLine);
  ASSERT_TRUE(silent.stop());
  const Seen sut = zerva("status", {"--timeout", "0.2"});
  silent.signal(SIGCONT);
  EXPECT_EQ(sut.code, 3);
  EXPECT_THAT(sut.output,
              HasSubstr("process " + std::to_string(silent.id()) + ", does not answer: "));
  EXPECT_THAT(sut.output, HasSubstr("process " + std::to_string(other.id()) + ", running"));
}

TEST_F(AHostThatDoesNotTellHowItIs, IsShownWithItsChannels) {
  const ChildProcess& host = start(kPlainLine, {});
  ASSERT_TRUE(
      waitUntil([&] { return !status(host).empty() && !status(host).at("channels").empty(); }));
  const Seen sut = zerva("status");
  EXPECT_EQ(sut.code, 0);
  EXPECT_EQ(sut.output, "process " + std::to_string(host.id()) +
                            ", does not tell how it is; it serves:\n  /test/plain\n");
}

TEST_F(TheStatus, OfABusWithoutProcesses_SaysSo) {
  const Seen sut = zerva("status");
  EXPECT_EQ(sut.code, 0);
  EXPECT_EQ(sut.output, "no process is on the bus\n");
}

TEST_F(TheStatus, OfABusThatIsNotThere_FailsAndMakesNone) {
  std::filesystem::remove(bus);
  const Seen sut = zerva("status");
  EXPECT_EQ(sut.code, 10);
  EXPECT_EQ(sut.errors, "zerva: there is no bus: " + bus + " is no directory\n");
  EXPECT_FALSE(std::filesystem::exists(bus));
}

TEST_F(TheStatus, OfOneService_IsShownWhole) {
  startAll(kPlainLine + kLazyLine);
  const Seen sut = zerva("status", {"/test/plain"});
  EXPECT_EQ(sut.code, 0);
  EXPECT_THAT(sut.output, StartsWith("interfaces  PlainIfc\nchannel     /test/plain\n"));
  EXPECT_THAT(sut.output, HasSubstr("\nlibrary     libPlain.so\ncreator     createPlain\n"));
  EXPECT_THAT(sut.output, Not(HasSubstr("LazyIfc")));
}

TEST_F(TheStatus, OfAServiceThatNobodyHas_SaysSo) {
  startAll(kPlainLine);
  const Seen sut = zerva("status", {"NoIfc"});
  EXPECT_EQ(sut.code, 4);
  EXPECT_EQ(sut.output, "");
  EXPECT_THAT(sut.errors, HasSubstr("has a service of name NoIfc\n"));
}

}  // namespace
}  // namespace zerva
