// For whom a thread works is known whenever calls are counted, with a trace or without one.

#include <gtest/gtest.h>

#include "host/tracing/WorkOfThreads.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"
#include "runtime/libClientUtils/trace/Trace.h"

namespace zerva {
namespace {

using Kind = ConfiguratorEvent::Kind;

class TheWorkOfAThread : public testing::Test {
 protected:
  TheWorkOfAThread() { SeenCalls::start(); }
  ~TheWorkOfAThread() override {
    Trace::workFor({}, false);
    SeenCalls::stop();
  }

  static void happens(Kind kind, const std::string& channel = "",
                      const std::string& interfaces = "") {
    ConfiguratorEvent event;
    event.kind = kind;
    event.channel = channel;
    event.interfaces = interfaces;
    event.creator = "createIt";
    workBegins(event);
    workEnds(event);
  }
};

TEST_F(TheWorkOfAThread, IsForTheServiceOfItsLineUntilThatIsUp) {
  happens(Kind::ServiceLine, "/one");
  EXPECT_EQ(Trace::servedByThisThread(), "/one");
  happens(Kind::InitTook);
  EXPECT_EQ(Trace::servedByThisThread(), "");
}

TEST_F(TheWorkOfAThread, IsForNobodyWhenItsServiceFailed) {
  happens(Kind::ServiceLine, "/one");
  happens(Kind::CreationFailed);
  EXPECT_EQ(Trace::servedByThisThread(), "");
}

TEST_F(TheWorkOfAThread, IsForNobodyOnALineWithoutAService) {
  for (const Kind kind : {Kind::Record, Kind::IncompleteLine, Kind::InvalidLine,
                          Kind::ProcessFailed, Kind::FileNotOpened}) {
    happens(Kind::ServiceLine, "/one");
    happens(kind);
    EXPECT_EQ(Trace::servedByThisThread(), "") << static_cast<int>(kind);
  }
}

TEST_F(TheWorkOfAThread, IsForALegacyServiceByItsFirstInterface) {
  happens(Kind::LegacyLine, "", "OneIfc OtherIfc");
  EXPECT_EQ(Trace::servedByThisThread(), "OneIfc");
  happens(Kind::LegacyLine);
  EXPECT_EQ(Trace::servedByThisThread(), "createIt");
}

TEST_F(TheWorkOfAThread, IsNothingOfALazyServiceItselfOnItsLine) {
  happens(Kind::LazyLine, "/lazy");
  EXPECT_EQ(Trace::servedByThisThread(), "/lazy");
  EXPECT_FALSE(Trace::runsOwnCode());
}

}  // namespace
}  // namespace zerva
