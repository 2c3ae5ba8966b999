#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "host/live/ProcessStatus.h"

namespace zerva {
namespace {

using testing::HasSubstr;

ProcessStatus example() {
  ProcessStatus status;
  status.process = 4711;
  status.file = "/etc/a \"b\".directives";
  status.phase = "running";
  status.waitsFor = "nothing";
  status.upSeconds = 2.5;
  ServiceStatus service;
  service.interfaces = "OneIfc OtherIfc";
  service.channel = "/one";
  service.library = "libOne.so";
  service.creator = "createOne";
  service.type = "OneService";
  service.mode = "MT";
  service.state = ServiceState::Failed;
  service.stateSeconds = 1.5;
  service.doing = "init";
  service.why = "no\nreason";
  service.initSeconds = 0.25;
  service.executor = ExecutorStatus{1ULL << 40, 1ULL << 50, 3, 4, 1ULL << 60};
  service.stuck = true;
  status.services = {service, ServiceStatus()};
  return status;
}

TEST(AProcessStatus, ThatIsWrittenAndRead_IsTheSame) {
  const ProcessStatus sut = readProcessStatus(writeProcessStatus(example()));
  EXPECT_EQ(sut.process, 4711);
  EXPECT_EQ(sut.file, "/etc/a \"b\".directives");
  EXPECT_EQ(sut.phase, "running");
  EXPECT_EQ(sut.waitsFor, "nothing");
  EXPECT_EQ(sut.upSeconds, 2.5);
  ASSERT_EQ(sut.services.size(), 2U);
  const ServiceStatus& service = sut.services[0];
  EXPECT_EQ(service.interfaces, "OneIfc OtherIfc");
  EXPECT_EQ(service.channel, "/one");
  EXPECT_EQ(service.library, "libOne.so");
  EXPECT_EQ(service.creator, "createOne");
  EXPECT_EQ(service.type, "OneService");
  EXPECT_EQ(service.mode, "MT");
  EXPECT_EQ(service.state, ServiceState::Failed);
  EXPECT_EQ(service.stateSeconds, 1.5);
  EXPECT_EQ(service.doing, "init");
  EXPECT_EQ(service.why, "no\nreason");
  EXPECT_EQ(service.initSeconds, 0.25);
  ASSERT_TRUE(service.executor);
  EXPECT_EQ(service.executor->id, 1ULL << 40);
  EXPECT_EQ(service.executor->requests, 1ULL << 50);
  EXPECT_EQ(service.executor->queued, 3U);
  EXPECT_EQ(service.executor->serving, 4U);
  EXPECT_EQ(service.executor->errors, 1ULL << 60);
  EXPECT_TRUE(service.stuck);
}

TEST(AProcessStatus, KeepsWhatIsNotKnown) {
  const ProcessStatus sut = readProcessStatus(writeProcessStatus(example()));
  EXPECT_FALSE(sut.services.at(1).initSeconds);
  EXPECT_FALSE(sut.services.at(1).executor);
}

TEST(AProcessStatus, CanHoldBytesThatAreNoText) {
  ProcessStatus status;
  status.file = "/\xff/file";
  EXPECT_THAT(readProcessStatus(writeProcessStatus(status)).file, HasSubstr("/file"));
}

TEST(AProcessStatus, IsNotReadFromAnythingElse) {
  for (const char* text : {"", "{", "[]", "{}", "3", R"({"process":"x"})"}) {
    EXPECT_THROW(readProcessStatus(text), std::runtime_error) << text;
  }
}

TEST(AProcessStatus, IsNotReadWithAStateThatIsNotKnown) {
  std::string text = writeProcessStatus(example());
  text.replace(text.find("\"failed\""), 8, "\"asleep\"");
  try {
    readProcessStatus(text);
    FAIL() << "it was read";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "'asleep' is no state of a service");
  }
}

TEST(AState, HasAWord) {
  EXPECT_STREQ(nameOf(ServiceState::Waiting), "waiting");
  EXPECT_STREQ(nameOf(ServiceState::Lazy), "lazy");
  EXPECT_STREQ(nameOf(ServiceState::Initialising), "initialising");
  EXPECT_STREQ(nameOf(ServiceState::Running), "running");
  EXPECT_STREQ(nameOf(ServiceState::Stopping), "stopping");
  EXPECT_STREQ(nameOf(ServiceState::Failed), "failed");
  EXPECT_STREQ(nameOf(ServiceState::Ended), "ended");
}

}  // namespace
}  // namespace zerva
