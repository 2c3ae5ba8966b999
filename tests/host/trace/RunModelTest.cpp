#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/trace/RunModel.h"
#include "tests/host/trace/TraceText.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> stagesOf(const ServiceRun& service) {
  std::vector<std::string> stages;
  for (const StageRun& stage : service.stages) {
    stages.push_back(std::string(nameOf(stage.stage)) + " " +
                     std::to_string(stage.when.begin / 1_ms) + "-" +
                     std::to_string(stage.when.end / 1_ms));
  }
  return stages;
}

const ServiceRun& only(const RunModel& run) {
  EXPECT_THAT(run.services, SizeIs(1));
  return run.services.at(0);
}

TEST(ARun, HasTheStagesOfAnImmediateService) {
  const RunModel run = TraceText().immediate(10, "/one", 5).running(20).run();
  const ServiceRun& sut = only(run);
  EXPECT_THAT(stagesOf(sut), ElementsAre("library 10-11", "creator 11-12", "executor 12-13",
                                         "announcement 13-14", "init 14-19"));
  EXPECT_EQ(sut.comingUp().length(), 9_ms);
  EXPECT_EQ(sut.waited(), 1_ms);
  EXPECT_EQ(sut.mode, "ST");
  EXPECT_EQ(sut.up, 19_ms);
}

TEST(ARun, HasALazyServiceThatComesUpWhenItIsMade) {
  TraceText text;
  text.add(1, "service_declared", "/lazy", R"("kind":"lazy")");
  text.add(2, "executor_started", "/lazy");
  text.add(4, "announcement", "/lazy", duration(1)).running(5);
  text.add(90, "first_request", "/lazy", R"("from":"/p","by":"/caller")");
  text.addOn(20, 100, "creation_begins", "/lazy").addOn(20, 103, "creator_called", "/lazy");
  text.addOn(20, 104, "service_recorded", "/lazy").addOn(20, 105, "init_begins", "/lazy");
  text.addOn(20, 109, "init_ended", "/lazy");
  const RunModel run = text.run();
  const ServiceRun& sut = only(run);
  EXPECT_THAT(stagesOf(sut), ElementsAre("executor 1-2", "announcement 2-4", "library 100-103",
                                         "creator 103-104", "init 105-109"));
  EXPECT_EQ(sut.comingUp().begin, 100_ms);
  EXPECT_EQ(sut.comingUp().end, 109_ms);
  EXPECT_EQ(sut.firstRequest, 90_ms);
  EXPECT_EQ(sut.firstCaller, "/caller");
}

TEST(ARun, KeepsApartWhatThreadsDoAtTheSameTime) {
  TraceText text;
  text.add(1, "service_declared", "/lazy", R"("kind":"lazy")");
  text.add(2, "service_declared", "/one", R"("kind":"immediate")");
  text.addOn(20, 3, "creation_begins", "/lazy").add(4, "creator_called", "/one");
  text.addOn(20, 5, "creator_called", "/lazy").add(6, "init_begins", "/one");
  text.addOn(20, 7, "init_begins", "/lazy").add(8, "init_ended", "/one");
  text.addOn(20, 9, "init_ended", "/lazy");
  const RunModel run = text.run();
  EXPECT_THAT(stagesOf(*run.find("/one")), ElementsAre("library 2-4", "creator 4-6", "init 6-8"));
  EXPECT_THAT(stagesOf(*run.find("/lazy")),
              ElementsAre("executor 1-2", "library 3-5", "creator 5-7", "init 7-9"));
}

TEST(ARun, TakesAnInitThatIsNotOverAsLastingToItsEnd) {
  TraceText text;
  text.add(1, "service_declared", "/one", R"("kind":"immediate")").add(2, "init_begins", "/one");
  text.addOn(20, 500, "library_opened", "/other");
  const RunModel run = text.run();
  EXPECT_THAT(stagesOf(only(run)), ElementsAre("library 1-2", "init 2-500"));
  EXPECT_FALSE(only(run).up);
  EXPECT_EQ(run.start.end, 500_ms);
}

TEST(ARun, KnowsWhyAServiceDidNotComeUp) {
  TraceText text;
  text.add(1, "service_declared", "/one", R"("kind":"immediate")");
  text.add(3, "failed", "/one", R"("what":"service","error":"no library")");
  text.add(4, "failed", "", R"("what":"line","error":"a bad line")");
  const RunModel run = text.run();
  EXPECT_EQ(only(run).error, "no library");
  EXPECT_THAT(stagesOf(only(run)), ElementsAre("library 1-3"));
  EXPECT_THAT(run.failures, ElementsAre("a bad line"));
}

TEST(ARun, HasTheStopOfEachServiceUntilTheNextOne) {
  TraceText text;
  text.immediate(1, "/one", 1).immediate(11, "/two", 1).running(20);
  text.add(30, "phase", "", R"("phase":"stopping")");
  text.add(31, "executor_stopped", "/one").add(35, "executor_stopped", "/two");
  text.add(36, "services_stopped").add(40, "executor_deleted", "/one", duration(2));
  text.add(43, "library_closed", "", R"("library":"/lib/lib.so")");
  text.add(50, "phase", "", R"("phase":"ended")");
  const RunModel run = text.run();
  EXPECT_THAT(stagesOf(*run.find("/one")), testing::IsSupersetOf({"stop 31-35", "deletion 38-43"}));
  EXPECT_EQ(run.find("/two")->total(Stage::Stop), 1_ms);
  EXPECT_EQ(run.stop->length(), 20_ms);
}

TEST(ARun, TakesTheTimeBeforeTheLibraryOfALegacyServiceIsClosedAsItsDeletion) {
  TraceText text;
  text.add(1, "service_declared", "ClockIfc", R"("kind":"legacy","library":"libClock.so")");
  text.add(2, "init_begins", "ClockIfc").add(3, "init_ended", "ClockIfc").running(4);
  text.add(30, "phase", "", R"("phase":"stopping")").add(31, "services_stopped");
  text.add(32, "phase", "", R"("phase":"deleting")");
  text.add(72, "library_closed", "", R"("library":"/lib/libClock.so")");
  const RunModel run = text.run();
  EXPECT_EQ(only(run).total(Stage::Deletion), 40_ms);
}

TEST(ARun, KnowsWhatAServiceWaitedFor) {
  TraceText text;
  text.immediate(1, "/one", 1);
  text.add(20, "question", "/one", R"("text":"find:A,/h",)" + duration(3));
  text.add(30, "call", "/one", R"("channel":"/two","method":"m",)" + duration(4));
  text.add(40, "waited", "/one", R"("for":"creation","channel":"/three",)" + duration(5));
  const RunModel run = text.run();
  const auto& waits = only(run).waits;
  ASSERT_THAT(waits, SizeIs(4));
  EXPECT_EQ(waits[1].what, "the registry's answer to 'find:A,/h'");
  EXPECT_EQ(waits[1].when.begin, 17_ms);
  EXPECT_EQ(waits[2].what, "m of /two");
  EXPECT_EQ(waits[3].what, "the making of /three");
}

TEST(ARun, HasTheLastCountsOfEachMethod) {
  const auto calls = [](int count) {
    return R"("channel":"/two","interface":"I","method":"m","count":)" + std::to_string(count) +
           R"(,"failures":1,"times":[[5,1]])";
  };
  TraceText text;
  text.add(1, "calls", "/one", calls(3)).add(2, "calls", "/one", calls(8));
  text.add(2, "calls", "/three", calls(1));
  const RunModel run = text.run();
  ASSERT_THAT(run.calls, SizeIs(2));
  EXPECT_EQ(run.calls[0].caller, "/one");
  EXPECT_EQ(run.calls[0].count, 8U);
  EXPECT_EQ(run.calls[1].count, 1U);
}

TEST(ARun, HasNumbersThatCanBeAddedUp) {
  TraceText text;
  text.add(1, "calls", "/one", R"("channel":"/two","count":-1,"failures":4611686018427387904)");
  for (int line = 0; line < 3; ++line) text.add(2, "lost", "", R"("events":4611686018427387904)");
  text.add(3, "lost", "", R"("events":-5)");
  const RunModel run = text.run();
  ASSERT_THAT(run.calls, SizeIs(1));
  EXPECT_EQ(run.calls[0].count, 0U);
  EXPECT_EQ(run.calls[0].failures, std::uint64_t{1} << 48);
  EXPECT_EQ(run.lost, std::int64_t{1} << 48);
}

TEST(ARun, HasWhatTheHostItselfWaitedFor) {
  TraceText text;
  text.add(5, "process_started", "", R"("program":"zerva","pid":7,)" + duration(2)).running(6);
  text.add(10, "phase", "", R"("phase":"ending_processes")");
  text.add(19, "phase", "", R"("phase":"ended")");
  const RunModel run = text.run();
  ASSERT_THAT(run.host.waits, SizeIs(2));
  EXPECT_EQ(run.host.waits[0].what, "the start of zerva");
  EXPECT_EQ(run.host.waits[1].what, "the end of started programs");
  EXPECT_EQ(run.host.waits[1].when.length(), 9_ms);
  ASSERT_THAT(run.processes, SizeIs(1));
  EXPECT_EQ(run.processes[0].pid, 7);
}

TEST(ARun, KnowsHowManyEventsAreMissing) {
  EXPECT_EQ(
      TraceText().add(1, "lost", "", "\"events\":3").add(2, "lost", "", "\"events\":4").run().lost,
      7);
}

TEST(ARun, OfATraceThatEndsBeforeTheStartHasNone) {
  const RunModel run = TraceText().run();
  EXPECT_THAT(run.services, IsEmpty());
  EXPECT_FALSE(run.stop);
  EXPECT_EQ(run.start.length(), 0);
}

TEST(ARun, CountsAQuestionAndTheMessageThatCarriesItAsOneWait) {
  TraceText text;
  text.add(1, "service_declared", "/one", R"("kind":"immediate")").add(2, "init_begins", "/one");
  text.add(5, "call", "/one", R"("channel":"/zerva/serviceregistry",)" + duration(2));
  text.add(6, "question", "/one", R"("text":"who",)" + duration(3));
  text.add(9, "init_ended", "/one").running(10);
  const RunModel run = text.run();
  EXPECT_EQ(run.find("/one")->waits.size(), 1U);
  EXPECT_EQ(run.find("/one")->waited(), 3_ms);
}

TEST(ARun, CountsWaitsThatOverlapOnce) {
  TraceText text;
  text.add(1, "service_declared", "/one", R"("kind":"immediate")").add(2, "init_begins", "/one");
  text.add(5, "waited", "/one", R"("for":"semaphore",)" + duration(2));
  text.addOn(20, 6, "waited", "/one", R"("for":"semaphore",)" + duration(2));
  text.add(9, "init_ended", "/one").running(10);
  EXPECT_EQ(text.run().find("/one")->waited(), 3_ms);
}

TEST(ARun, KnowsWhetherItsStartWasOver) {
  EXPECT_FALSE(TraceText().immediate(1, "/one", 2).run().running);
  EXPECT_TRUE(TraceText().immediate(1, "/one", 2).running(9).run().running);
}

}  // namespace
}  // namespace zerva
