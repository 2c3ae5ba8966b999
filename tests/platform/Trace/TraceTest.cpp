#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <latch>
#include <string_view>
#include <thread>

#include "framework/Threadable.h"
#include "framework/Threader.h"
#include "runtime/libClientUtils/ServingThread.h"
#include "tests/platform/RecordingSink.h"
#include "tests/platform/Trace/TraceWorld.h"
#include "tests/support/Concurrently.h"
#include "tests/support/NoMemory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ATrace : public TraceWorld {};

void opened(const std::string& channel) {
  TraceEvent(TraceKind::ChannelOpened).with(TraceKey::Channel, channel).write();
}

TEST_F(ATrace, IsOffUntilItIsStartedAndWhenItHasStopped) {
  EXPECT_FALSE(Trace::on());
  start();
  EXPECT_TRUE(Trace::on());
  Trace::stop();
  EXPECT_FALSE(Trace::on());
}

TEST_F(ATrace, BeginsWithTheProcess) {
  start();
  const TraceLine first = lines().front();
  EXPECT_EQ(first.event, "trace");
  EXPECT_EQ(first.number("version"), 1);
  EXPECT_EQ(first.number("pid"), ::getpid());
  EXPECT_EQ(first.number("bits"), static_cast<std::int64_t>(sizeof(void*) * 8));
  EXPECT_EQ(first.text("file"), "a.directives");
}

TEST_F(ATrace, HoldsAnEventWithItsFieldsAndItsThread) {
  start();
  const std::int64_t before = Trace::now();
  opened("/one");
  const std::int64_t after = Trace::now();
  const auto events = lines("channel_opened");
  ASSERT_THAT(events, SizeIs(1));
  EXPECT_EQ(events[0].text("channel"), "/one");
  EXPECT_EQ(events[0].thread, ::gettid());
  EXPECT_GE(events[0].t, before);
  EXPECT_LE(events[0].t, after);
}

TEST_F(ATrace, HoldsNamesOfAnyCharacters) {
  start();
  opened("a \"quoted\"\nline\\ with \t, \x01 and \xC3\xA4");
  EXPECT_EQ(lines("channel_opened").at(0).text("channel"),
            "a \"quoted\"\nline\\ with \t, \x01 and \xC3\xA4");
}

TEST_F(ATrace, CutsATextThatIsTooLongAndKeepsTheNumberBehindIt) {
  start();
  TraceEvent(TraceKind::LibraryOpened)
      .with(TraceKey::Error, std::string(100000, 'x'))
      .with(TraceKey::Duration, 42)
      .write();
  const auto events = lines("library_opened");
  ASSERT_THAT(events, SizeIs(1));
  EXPECT_GT(events[0].text("error").size(), 1000U);
  EXPECT_EQ(events[0].number("duration"), 42);
}

TEST_F(ATrace, SaysForWhomTheThreadWorks) {
  start();
  Trace::workFor("/one", false);
  opened("/a");
  {
    const TraceWorkScope nobody{{}};
    opened("/b");
  }
  opened("/c");
  TraceEvent(TraceKind::ChannelOpened).forService("/two").with(TraceKey::Channel, "/d").write();
  const auto events = lines("channel_opened");
  ASSERT_THAT(events, SizeIs(4));
  EXPECT_EQ(events[0].service, "/one");
  EXPECT_EQ(events[1].service, "");
  EXPECT_EQ(events[2].service, "/one");
  EXPECT_EQ(events[3].service, "/two");
}

TEST_F(ATrace, TakesNoMemoryForWhomAThreadWorksForAWhile) {
  start();
  letAllocationFail(1);
  {
    const TraceWorkScope sut("/a/service/that/comes/and/goes");
    EXPECT_EQ(Trace::servedByThisThread(), "/a/service/that/comes/and/goes");
  }
  EXPECT_TRUE(allocationIsToFail());
  letAllocationFail(0);
}

/** Notes for whom its thread works, and stays until it may go. */
class Working final : public Threadable {
 public:
  void run() override {
    service = Trace::servedByThisThread();
    isThere.count_down();
    mayGo.wait();
  }

  std::string_view service;
  std::latch isThere{1};
  std::latch mayGo{1};
};

TEST_F(ATrace, KeepsForWhomAThreadWorksOnlyAsLongAsTheThread) {
  start();
  const TraceWorkScope starter("/a/service/that/comes/and/goes");
  Threader threader;
  std::array<Working, 2> sut;
  for (Working& one : sut) {
    unsigned long id = 0;
    ASSERT_TRUE(threader.spawn(&id, &one, "working", THREAD_PRIORITY_NORMAL, 0));
    one.isThere.wait();
    EXPECT_EQ(one.service, "/a/service/that/comes/and/goes");
  }
  EXPECT_NE(sut[0].service.data(), sut[1].service.data()) << "each has its own";
  for (Working& one : sut) {
    one.mayGo.count_down();
    one.waitForThreadCompletion();
  }
}

/** An executor that a thread serves for. */
class ServedChannel final : public Serving {
 public:
  void waitBegins(const std::shared_ptr<Parker>&) override {}
  void waitEnds(const std::shared_ptr<Parker>&) override {}
  bool isShutDown() override { return false; }
  bool serveNext(const CallChain&) override { return false; }
  std::string_view channelName() const override { return "/served"; }
};

TEST_F(ATrace, TakesWhoIsServedForTheOneThatTheThreadWorksFor) {
  ServedChannel served;
  const CallChain chain;
  start();
  Trace::workFor("/one", false);
  {
    const ServingScope serving(&served, chain);
    opened("/a");
    const TraceWorkScope nobody{{}};
    opened("/b");
  }
  opened("/c");
  const auto events = lines("channel_opened");
  ASSERT_THAT(events, SizeIs(3));
  EXPECT_EQ(events[0].service, "/served");
  EXPECT_EQ(events[1].service, "");
  EXPECT_EQ(events[2].service, "/one");
}

TEST_F(ATrace, IsInTheFileSoonAlsoWhileItGoesOn) {
  start();
  opened("/one");
  EXPECT_TRUE(waitUntil([&] { return readFile(path()).find("/one") != std::string::npos; }));
  EXPECT_TRUE(Trace::on());
}

TEST_F(ATrace, IsInTheFileAtOnceWhenItIsFlushed) {
  start();
  opened("/one");
  Trace::flush();
  EXPECT_THAT(readFile(path()), HasSubstr("/one"));
}

TEST_F(ATrace, HoldsWhatManyThreadsDoOrTellsHowMuchIsMissing) {
  constexpr std::size_t threads = 8;
  constexpr int each = 2000;
  start();
  concurrently(threads, [&](std::size_t thread) {
    for (int number = 0; number < each; ++number) {
      opened(std::to_string(thread) + "/" + std::to_string(number));
    }
  });
  std::size_t events = 0;
  for (const TraceLine& line : lines()) {
    if (line.event == "channel_opened") ++events;
    if (line.event == "lost") events += static_cast<std::size_t>(line.number("events"));
  }
  EXPECT_EQ(events, threads * each);
}

TEST_F(ATrace, MayBeStoppedWhileThreadsGoOn) {
  start();
  std::atomic<bool> stopped{false};
  std::thread busy([&] {
    while (!stopped) {
      if (Trace::on()) opened("/one");
      Trace::called("/one", "Ifc", "method", Trace::begin(), {});
    }
  });
  EXPECT_TRUE(waitUntil([&] { return readFile(path()).find("/one") != std::string::npos; }));
  Trace::stop();
  EXPECT_FALSE(readTraceFile(path()).empty());
  stopped = true;
  busy.join();
}

TEST_F(ATrace, MayBeStartedAgainToANewFile) {
  start();
  opened("/one");
  Trace::called("/one", "Ifc", "method", Trace::begin(), {});
  start();
  Trace::stop();
  start();
  opened("/two");
  EXPECT_THAT(lines("calls"), IsEmpty());
  EXPECT_EQ(lines("channel_opened").at(0).text("channel"), "/two");
}

TEST_F(ATrace, ToAFileThatCannotBeOpenedDoesNotBegin) {
  EXPECT_THAT(Trace::start((directory.path() / "none" / "trace").string(), ""),
              HasSubstr("No such file"));
  EXPECT_FALSE(Trace::on());
}

// /dev/full takes no byte, as a disk that is full.
TEST_F(ATrace, OfAFullDiskEndsIsToldOnceAndDisturbsNobody) {
  const RecordingSink log("Trace");
  ASSERT_EQ(Trace::start("/dev/full", ""), "");
  EXPECT_TRUE(waitUntil([] { return !Trace::on(); }));
  opened("/one");
  Trace::flush();
  Trace::stop();
  ASSERT_THAT(log.texts(), SizeIs(1));
  EXPECT_THAT(log.texts()[0], HasSubstr("the trace '/dev/full' ends here: No space left"));
}

TEST_F(ATrace, OfAFullDiskEndsAlsoWhenItIsWrittenAtOnce) {
  const RecordingSink log("Trace");
  for (int time = 0; time < 300; ++time) {
    // More than the half of a buffer, so that nobody waits for more.
    for (int event = 0; event < 300; ++event) opened(std::string(1000, 'x'));
    ASSERT_EQ(Trace::start("/dev/full", ""), "");
    ASSERT_TRUE(waitUntil([] { return !Trace::on(); }, std::chrono::seconds(5))) << time;
    Trace::stop();
  }
}

// As a viewer that was stopped while the trace goes through a pipe to it.
TEST_F(ATrace, WhoseReaderDoesNotReadEndsAndStopsNobody) {
  const RecordingSink log("Trace");
  const std::string pipe = directory.file("pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  ASSERT_EQ(Trace::start(pipe, ""), "");
  const int size = ::fcntl(reader, F_SETPIPE_SZ, 4096);
  for (int number = 0; number < size / 10; ++number) opened("/one");
  Trace::stop();
  ::close(reader);
  ASSERT_THAT(log.texts(), SizeIs(1));
  EXPECT_THAT(log.texts()[0], HasSubstr("ends here: nobody reads it"));
}

TEST_F(ATrace, WithoutMemoryLosesACallAndSaysSo) {
  start();
  letAllocationFail(1);
  Trace::called("/callee", "Ifc", "method", Trace::begin(), {});
  EXPECT_FALSE(allocationIsToFail());
  const auto lost = lines("lost");
  ASSERT_THAT(lost, SizeIs(1));
  EXPECT_EQ(lost[0].number("events"), 1);
}

TEST_F(ATrace, WithoutMemoryDoesNotKnowForWhomAThreadWorks) {
  start();
  letAllocationFail(1);
  Trace::workFor("/a/service/whose/name/was/not/heard/before", false);
  EXPECT_FALSE(allocationIsToFail());
  opened("/one");
  const auto all = lines();
  EXPECT_EQ(all.at(1).service, "");
  EXPECT_EQ(all.back().event, "lost");
}

TEST_F(ATrace, TakesNoMemoryWhileItIsOff) {
  letAllocationFail(1);
  Trace::workFor("/another/service/whose/name/was/not/heard/before", true);
  Trace::called("/callee", "Ifc", "method", Trace::begin(), {});
  { const TraceWorkScope scope("/and/another/service/whose/name/was/not/heard/before"); }
  Trace::flush();
  Trace::stop();
  EXPECT_TRUE(allocationIsToFail());
  letAllocationFail(0);
}

TEST_F(ATrace, CountsCallsAndTellsHowLongTheyTook) {
  start();
  for (int call = 0; call < 100; ++call) {
    Trace::called("/callee", "Ifc", "method", Trace::now() - 1000000, call < 3 ? "failed" : "");
  }
  const auto calls = lines("calls");
  ASSERT_THAT(calls, SizeIs(1));
  EXPECT_EQ(calls[0].text("channel"), "/callee");
  EXPECT_EQ(calls[0].text("interface"), "Ifc");
  EXPECT_EQ(calls[0].text("method"), "method");
  EXPECT_EQ(calls[0].number("count"), 100);
  EXPECT_EQ(calls[0].number("failures"), 3);
  EXPECT_GE(calls[0].number("total"), 100000000);
  std::uint64_t timed = 0;
  for (const auto& [last, count] : calls[0].times) {
    EXPECT_GE(last, 1000000);
    timed += count;
  }
  EXPECT_EQ(timed, 100U);
}

TEST_F(ATrace, HoldsTheSingleCallsOfAServiceThatIsComingUpOnly) {
  start();
  Trace::workFor("/one", true);
  Trace::called("/callee", "Ifc", "first", Trace::begin(), "it failed");
  Trace::workFor("/one", false);
  Trace::called("/callee", "Ifc", "second", Trace::begin(), {});
  const auto calls = lines("call");
  ASSERT_THAT(calls, SizeIs(1));
  EXPECT_EQ(calls[0].service, "/one");
  EXPECT_EQ(calls[0].text("method"), "first");
  EXPECT_EQ(calls[0].text("error"), "it failed");
}

TEST_F(ATrace, CallsTheTellingOfAnInterfaceToTheRegistryAnAnnouncement) {
  start();
  Trace::workFor("/one", true);
  Trace::called("/zerva/serviceregistry", "ServiceRegistryIfc", "registerInterface", Trace::begin(),
                {});
  const auto announcements = lines("announcement");
  ASSERT_THAT(announcements, SizeIs(1));
  EXPECT_EQ(announcements[0].service, "/one");
  EXPECT_THAT(lines("call"), IsEmpty());
}

}  // namespace
}  // namespace zerva
