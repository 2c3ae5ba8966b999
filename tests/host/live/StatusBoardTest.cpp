#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>

#include "host/live/StatusBoard.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using namespace std::chrono_literals;

const char* const kFile =
    "# what comes up\n"
    "service_instance: ST libOne.so createOne /one OneIfc OtherIfc\n"
    "proxy_info: libOne.so createProxy OneIfc zerva_simple_rmi\n"
    "service_info: libTwo.so createTwo /two TwoIfc\n"
    "service_legacy: libThree.so createThree ThreeIfc\n";

ServiceStatus line(const std::string& name, const std::string& mode = "ST") {
  ServiceStatus service;
  service.library = "lib" + name + ".so";
  service.creator = "create" + name;
  service.channel = "/" + name;
  service.interfaces = name + "Ifc";
  service.mode = mode;
  return service;
}

class AStatusBoard : public testing::Test {
 protected:
  ServiceStatus service(std::size_t place = 0) const { return sut.read().services.at(place); }

  const TempDirectory directory;
  StatusBoard sut;
};

TEST_F(AStatusBoard, OfAProcessThatHasNotBegun_TellsThatItWaits) {
  const ProcessStatus status = sut.read();
  EXPECT_EQ(status.process, getpid());
  EXPECT_EQ(status.phase, "waiting");
  EXPECT_TRUE(status.services.empty());
}

TEST_F(AStatusBoard, ThatExpectsAFile_HasEachServiceOfItWaiting) {
  sut.expect(directory.write("file", kFile));
  const ProcessStatus status = sut.read();
  EXPECT_EQ(status.file, directory.file("file"));
  ASSERT_EQ(status.services.size(), 3U);
  EXPECT_EQ(status.services[0].state, ServiceState::Waiting);
  EXPECT_EQ(status.services[0].library, "libOne.so");
  EXPECT_EQ(status.services[0].creator, "createOne");
  EXPECT_EQ(status.services[0].channel, "/one");
  EXPECT_EQ(status.services[0].interfaces, "OneIfc OtherIfc");
  EXPECT_EQ(status.services[0].mode, "ST");
  EXPECT_EQ(status.services[1].mode, "MT, lazy");
  EXPECT_EQ(status.services[2].mode, "legacy");
  EXPECT_EQ(status.services[2].channel, "");
  EXPECT_EQ(status.services[2].interfaces, "ThreeIfc");
}

TEST_F(AStatusBoard, ThatExpectsAFileThatIsMissing_KnowsNoService) {
  sut.expect(directory.file("missing"));
  EXPECT_TRUE(sut.read().services.empty());
}

TEST_F(AStatusBoard, SurvivesLinesThatAreTooShort) {
  sut.expect(directory.write("file", "service_instance:\nservice_info: ST\nservice_legacy: x\n"));
  EXPECT_EQ(sut.read().services.size(), 3U);
}

TEST_F(AStatusBoard, GivesALineThatComesTheRowThatWaitsForIt) {
  sut.expect(directory.write("file", kFile));
  ServiceStatus second = line("Two", "MT, lazy");
  second.channel = "/two";
  sut.isLazy(second);
  EXPECT_EQ(service(0).state, ServiceState::Waiting);
  EXPECT_EQ(service(1).state, ServiceState::Lazy);
  EXPECT_EQ(sut.read().services.size(), 3U);
}

TEST_F(AStatusBoard, GivesLinesThatAreAlikeOneRowEach) {
  const std::string twice = "service_instance: ST libOne.so createOne /One OneIfc\n";
  sut.expect(directory.write("file", twice + twice));
  EXPECT_EQ(sut.begins(line("One")), 0U);
  EXPECT_EQ(sut.begins(line("One")), 1U);
  EXPECT_EQ(sut.begins(line("One")), 2U);
}

TEST_F(AStatusBoard, FollowsAServiceUntilItRuns) {
  const auto place = sut.begins(line("One"));
  sut.advances(place, "init of OneService");
  EXPECT_EQ(service().state, ServiceState::Initialising);
  EXPECT_EQ(service().doing, "init of OneService");
  sut.recorded(place, "OneService of libOne.so", "");
  sut.isUp(place, 1250ms);
  EXPECT_EQ(service().state, ServiceState::Running);
  EXPECT_EQ(service().doing, "");
  EXPECT_EQ(service().type, "OneService of libOne.so");
  EXPECT_EQ(service().mode, "ST");
  EXPECT_EQ(service().initSeconds, 1.25);
}

TEST_F(AStatusBoard, HasTheInterfacesOfALegacyServiceThatTheConfiguratorReads) {
  sut.expect(directory.write("file",
                             "service_legacy: libOne.so createOne OneIfc OtherIfc\n"
                             "service_legacy: ST libTwo.so createTwo TwoIfc OtherIfc\n"));
  EXPECT_EQ(service(0).interfaces, "OneIfc OtherIfc");
  EXPECT_EQ(service(1).interfaces, "createTwo TwoIfc OtherIfc");
  EXPECT_EQ(service(1).creator, "createTwo");
}

TEST_F(AStatusBoard, TellsWhyAServiceFailed) {
  const auto place = sut.begins(line("One"));
  sut.failed(place, "there is no library");
  EXPECT_EQ(service().state, ServiceState::Failed);
  EXPECT_EQ(service().why, "there is no library");
}

/** A lazy one beside `line("One")`, with its library and creator. */
ServiceStatus another() {
  ServiceStatus other = line("One", "ST, lazy");
  other.channel = "/other";
  other.interfaces = "OtherIfc";
  return other;
}

TEST_F(AStatusBoard, FindsTheLazyServiceThatIsBeingMadeByItsChannel) {
  sut.isLazy(line("One", "ST, lazy"));
  sut.isLazy(another());
  EXPECT_EQ(sut.lazyBegins("/other"), 1U);
  EXPECT_EQ(service(1).state, ServiceState::Initialising);
  EXPECT_EQ(service(0).state, ServiceState::Lazy);
}

TEST_F(AStatusBoard, DoesNotGuessWhichOfTwoLazyServicesOfAChannelIsBeingMade) {
  ServiceStatus other = another();
  other.channel = "/One";
  sut.isLazy(line("One", "ST, lazy"));
  sut.isLazy(other);
  EXPECT_FALSE(sut.lazyBegins("/One"));
  EXPECT_EQ(sut.lazyRecorded("/One", "OtherIfc "), 1U);
  EXPECT_EQ(service(0).state, ServiceState::Lazy);
  EXPECT_EQ(service(1).state, ServiceState::Initialising);
}

TEST_F(AStatusBoard, TakesNoServiceForALazyOneThatIsNone) {
  const auto place = sut.begins(line("One"));
  sut.failed(place, "no");
  EXPECT_FALSE(sut.lazyBegins("/One"));
  EXPECT_FALSE(sut.lazyRecorded("/One", "OneIfc"));
}

TEST_F(AStatusBoard, ForgetsWhyALazyServiceFailedWhenItIsTriedAgain) {
  sut.isLazy(line("One", "ST, lazy"));
  sut.lazyFailed(line("One"), "no library");
  EXPECT_EQ(service().state, ServiceState::Failed);
  EXPECT_EQ(service().why, "no library");
  EXPECT_EQ(sut.lazyBegins("/One"), 0U);
  EXPECT_EQ(service().why, "");
}

TEST_F(AStatusBoard, HoldsALazyServiceForFailedOfWhichNoMoreIsKnownThanItsChannel) {
  sut.isLazy(line("One", "ST, lazy"));
  sut.isLazy(another());
  ServiceStatus known;
  known.channel = "/other";
  sut.lazyFailed(known, "no library");
  EXPECT_EQ(service(0).state, ServiceState::Lazy);
  EXPECT_EQ(service(1).why, "no library");
}

TEST_F(AStatusBoard, HoldsWhatStillWaitsWhenTheStartEndsForFailed) {
  sut.expect(directory.write("file", kFile));
  sut.isUp(sut.begins(line("Four")), 0ms);
  sut.startEnds();
  EXPECT_EQ(service(0).state, ServiceState::Failed);
  EXPECT_EQ(service(0).why, "its line brought nothing up");
  EXPECT_EQ(service(3).state, ServiceState::Running);
}

TEST_F(AStatusBoard, OfAProcessThatStops_HasStoppingWhatRanOrWasBeingMade) {
  sut.isUp(sut.begins(line("One")), 0ms);
  const auto made = sut.begins(line("Two"));
  sut.isLazy(line("Three", "ST, lazy"));
  sut.enter("stopping");
  EXPECT_EQ(sut.read().phase, "stopping");
  EXPECT_EQ(service(0).state, ServiceState::Stopping);
  EXPECT_EQ(service(1).state, ServiceState::Stopping);
  EXPECT_EQ(service(2).state, ServiceState::Lazy);
  sut.isUp(made, 0ms);
  EXPECT_EQ(service(1).state, ServiceState::Stopping);
}

TEST_F(AStatusBoard, HasEndedWhatWasDeleted) {
  sut.isUp(sut.begins(line("One")), 0ms);
  sut.failed(sut.begins(line("Two")), "no");
  sut.deleted();
  EXPECT_EQ(service(0).state, ServiceState::Ended);
  EXPECT_EQ(service(1).state, ServiceState::Failed);
}

TEST_F(AStatusBoard, TellsWhatTheProcessWaitsForBeforeItStarts) {
  sut.awaits("channel /there");
  EXPECT_EQ(sut.read().waitsFor, "channel /there");
  sut.awaits("");
  EXPECT_EQ(sut.read().waitsFor, "");
}

}  // namespace
}  // namespace zerva
