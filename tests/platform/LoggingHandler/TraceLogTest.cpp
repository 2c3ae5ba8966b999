#include <gmock/gmock.h>

#include "framework/TraceLog.h"
#include "runtime/libLoggingHandler/MonitoredThreads.h"
#include "tests/platform/LoggingHandler/LoggingTest.h"
#include "tests/platform/RecordingSink.h"

namespace zerva {

static bool operator==(const MonitoredThread& one, const MonitoredThread& other) {
  return one.threadId == other.threadId && one.name == other.name && one.alive == other.alive;
}

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class TheTraceLog : public LoggingTest {
 protected:
  void start(int thread, const std::string& name, bool alive = true) {
    TraceLog::_instance.logPMon_start(thread, name.c_str(), 0, nullptr, nullptr, alive);
  }
};

TEST_F(TheTraceLog, RecordsThreadAndName) {
  start(4711, module);

  EXPECT_THAT(MonitoredThreads::list(), Contains(MonitoredThread{4711, module, true}));
}

TEST_F(TheTraceLog, RecordsThatAThreadIsNotAlive) {
  start(4711, module);

  start(4711, module, false);

  EXPECT_THAT(MonitoredThreads::list(), Contains(MonitoredThread{4711, module, false}));
  EXPECT_THAT(MonitoredThreads::list(), Not(Contains(MonitoredThread{4711, module, true})));
}

TEST_F(TheTraceLog, DoesNotGrowWhenANameIsStartedAgainOnAnotherThread) {
  start(4711, module);
  const auto before = MonitoredThreads::list().size();

  start(4712, module);

  EXPECT_EQ(MonitoredThreads::list().size(), before);
  EXPECT_THAT(MonitoredThreads::list(), Contains(MonitoredThread{4712, module, true}));
}

TEST_F(TheTraceLog, IsSeenInTheLog) {
  const RecordingSink sink("Trace Log", 4);

  start(4711, module);

  ASSERT_EQ(sink.records().size(), 1U);
  EXPECT_EQ(sink.records().front().level, 4);
  EXPECT_THAT(sink.texts().front(), HasSubstr("4711"));
  EXPECT_THAT(sink.texts().front(), HasSubstr(module));
}

TEST_F(TheTraceLog, TakesAMissingNameForAnEmptyOne) {
  TraceLog::_instance.logPMon_start(4711, nullptr, 0, nullptr, nullptr, true);

  EXPECT_THAT(MonitoredThreads::list(), Contains(MonitoredThread{4711, "", true}));
}

}  // namespace
}  // namespace zerva
