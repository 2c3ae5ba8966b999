#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "framework/CallException.h"
#include "framework/CommsChannel.h"
#include "framework/ProxyRequestImpl.h"
#include "host/live/HostStatusProxy.h"
#include "host/live/ProcessStatus.h"
#include "host/live/StatusBoard.h"
#include "host/live/StatusServing.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libServiceExecutor/Drain.h"
#include "tests/support/ExecutorWorld.h"

namespace zerva {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

/** Asks as another process would. */
std::string status(const std::string& interface = HostStatusIfc::name,
                   const std::string& protocol = "zerva_simple_rmi") {
  ProtocolRepository protocols;
  CommsChannel channel("/test/asking", nullptr);
  ProxyRequestImpl request(&channel, StatusServing::channel(), interface, protocol,
                           protocols.findProtocolAdapter(protocol), "", nullptr);
  HostStatusProxy proxy;
  proxy.initialise(&request);
  return proxy.status();
}

TEST(AServedStatus, IsOnAChannelOfTheProcess) {
  EXPECT_EQ(StatusServing::channel(), "/zerva/host/" + std::to_string(getpid()) + "/status");
}

TEST(AServedStatus, IsToldToWhoeverAsksInEitherProtocol) {
  StatusBoard board;
  const StatusServing sut(board, [] { return std::string("nobody"); });
  board.enter("running");
  for (const char* protocol : {"zerva_simple_rmi", "zerva_svc_xml"}) {
    const ProcessStatus told = readProcessStatus(status(HostStatusIfc::name, protocol));
    EXPECT_EQ(told.phase, "running");
    EXPECT_EQ(told.waitsFor, "nobody");
  }
}

TEST(AServedStatus, IsTheOnlyInterface) {
  StatusBoard board;
  const StatusServing sut(board, [] { return std::string(); });
  try {
    status("OtherIfc");
    FAIL() << "it was answered";
  } catch (const CallException& error) {
    EXPECT_THAT(error.getCause(), HasSubstr("there is no invoker for interface 'OtherIfc'"));
  }
}

TEST(AServedStatus, GoesOnThroughADrainThatSparesIt) {
  StatusBoard board;
  const StatusServing sut(board, [] { return std::string(); });
  ExecutorWorld world;
  ScriptedService service;
  world.run(&service, "/here", Mode::ST);
  EXPECT_TRUE(drainExecutors(0ms, StatusServing::channel()).complete);
  EXPECT_FALSE(ask("/here", "x").ok);
  EXPECT_NO_THROW(readProcessStatus(status()));
  world.end();
}

TEST(AServedStatus, IsNotAmongWhatIsUnderWayWhenItIsSpared) {
  StatusBoard board;
  std::vector<std::string> all;
  std::vector<std::string> others;
  const StatusServing sut(board, [&] {
    all = executorsUnderWay();
    others = executorsUnderWay(StatusServing::channel());
    return std::string();
  });
  status();
  EXPECT_EQ(all.size(), 1U);
  EXPECT_TRUE(others.empty());
}

TEST(AServedStatus, IsGoneWithItsServing) {
  StatusBoard board;
  {
    const StatusServing sut(board, [] { return std::string(); });
  }
  EXPECT_THROW(status(), CallException);
}

}  // namespace
}  // namespace zerva
