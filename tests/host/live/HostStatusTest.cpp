#include <gtest/gtest.h>

#include "host/live/HostStatus.h"
#include "host/live/StatusBoard.h"
#include "runtime/libServiceExecutor/Progress.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

ServiceStatus service(const std::string& channel, const std::string& interfaces) {
  ServiceStatus status;
  status.channel = channel;
  status.interfaces = interfaces;
  status.state = ServiceState::Running;
  return status;
}

ExecutorProgress executor(std::uint64_t id, const std::string& channel,
                          const std::string& interfaces) {
  ExecutorProgress progress{id, 10 * id, 2, "", channel, interfaces};
  progress.serving = 1;
  progress.failed = 3;
  return progress;
}

TEST(AServicesCounters, AreThoseOfItsExecutor) {
  std::vector<ServiceStatus> sut{service("/a", "AIfc"), service("/b", "BIfc OtherIfc")};
  addCounters(sut, {executor(7, "/b", "BIfc OtherIfc"), executor(8, "/c", "CIfc")});
  EXPECT_FALSE(sut[0].executor);
  ASSERT_TRUE(sut[1].executor);
  EXPECT_EQ(sut[1].executor->id, 7U);
  EXPECT_EQ(sut[1].executor->requests, 70U);
  EXPECT_EQ(sut[1].executor->queued, 2U);
  EXPECT_EQ(sut[1].executor->serving, 1U);
  EXPECT_EQ(sut[1].executor->errors, 3U);
}

TEST(AServicesCounters, AreThoseOfTheOneWithItsInterfacesWhenSeveralHaveTheChannel) {
  std::vector<ServiceStatus> sut{service("/a", "A"), service("/a", "AIfc"), service("/a", "AIfc")};
  addCounters(sut, {executor(1, "/a", "AIfc"), executor(2, "/a", "A "), executor(3, "/a", "AIfc")});
  EXPECT_EQ(sut[0].executor->id, 2U);
  EXPECT_EQ(sut[1].executor->id, 1U);
  EXPECT_EQ(sut[2].executor->id, 3U);
}

TEST(AServiceWithoutAChannel, HasNoCounters) {
  std::vector<ServiceStatus> sut{service("", "AIfc")};
  addCounters(sut, {executor(1, "", "AIfc")});
  EXPECT_FALSE(sut[0].executor);
}

TEST(ALazyService, WhoseExecutorIsMakingIt_IsInitialising) {
  std::vector<ServiceStatus> sut{service("/a", "AIfc")};
  sut[0].state = ServiceState::Lazy;
  sut[0].stateSeconds = 100;
  ExecutorProgress making = executor(1, "/a", "AIfc");
  making.making = true;
  addCounters(sut, {making});
  EXPECT_EQ(sut[0].state, ServiceState::Initialising);
  EXPECT_EQ(sut[0].stateSeconds, 0) << "as long as its line is there";
}

TEST(AHostStatus, TellsWhatTheBoardAndTheCountersSay) {
  ExecutorWorld world;
  ScriptedService behind([](const std::string& request) -> std::string {
    if (request == "fail") throw std::runtime_error("as asked");
    return request;
  });
  world.run(&behind, "/here", Mode::ST);
  ask("/here", "x");
  ask("/here", "fail");
  StatusBoard board;
  ServiceStatus line = service("/here", "Ifc");
  board.begins(line);
  HostStatus sut(board, [] { return std::string("something"); });
  const ProcessStatus status = readProcessStatus(sut.status());
  EXPECT_EQ(status.waitsFor, "something");
  ASSERT_TRUE(status.services.at(0).executor);
  EXPECT_EQ(status.services[0].executor->requests, 2U);
  EXPECT_EQ(status.services[0].executor->errors, 1U);
  EXPECT_EQ(status.services[0].executor->queued, 0U);
  world.end();
}

TEST(AHostStatus, TellsFirstWhatIsWaitedForBeforeTheStart) {
  StatusBoard board;
  board.awaits("channel /there");
  HostStatus sut(board, [] { return std::string("something"); });
  EXPECT_EQ(readProcessStatus(sut.status()).waitsFor, "channel /there");
}

TEST(AnExecutorsProgress, TellsOfALazyServiceThatIsBeingMade) {
  ExecutorWorld world;
  ScriptedService service;
  bool seen = false;
  world.context.make = [&] {
    for (const ExecutorProgress& progress : executorProgress()) {
      if (progress.channel == "/lazy") seen = progress.making && progress.serving == 1;
    }
    return &service;
  };
  world.runLazy("/lazy", Mode::ST);
  for (const ExecutorProgress& progress : executorProgress()) {
    if (progress.channel == "/lazy") {
      EXPECT_FALSE(progress.making);
    }
  }
  EXPECT_EQ(ask("/lazy", "x").data, "x");
  EXPECT_TRUE(seen);
  world.end();
}

}  // namespace
}  // namespace zerva
