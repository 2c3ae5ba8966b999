// The calls of a process that is looked at while it runs.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "framework/CallException.h"
#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/Threadable.h"
#include "framework/Threader.h"
#include "host/trace/CallGraph.h"
#include "rmi/ProxyOf.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libClientUtils/trace/SeenCalls.h"
#include "tests/platform/Trace/TraceWorld.h"
#include "tests/support/Concurrently.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::int64_t kMillisecond = 1'000'000;

/** What was counted of one caller, callee and method. */
struct Seen {
  std::string who;
  CallFigures figures;
};

class TheSeenCalls : public TraceWorld {
 protected:
  ~TheSeenCalls() override { SeenCalls::stop(); }

  static std::vector<Seen> seen() {
    std::vector<Seen> all;
    SeenCalls::visit([&](const CallKey& key, const CallFigures& figures) {
      all.push_back({std::string(key.service) + ">" + std::string(key.channel) + " " +
                         std::string(key.interface) + "." + std::string(key.method),
                     figures});
    });
    return all;
  }

  /** A call that the thread makes, as a proxy tells of it. */
  static void call(const std::string& channel, const std::string& error = "") {
    Trace::called(channel, "Ifc", "method", Trace::beginOfCall(), error);
  }
};

TEST_F(TheSeenCalls, AreThoseOfEachCallerAndWhatItCalls) {
  SeenCalls::start();
  Trace::workFor("/one", false);
  call("/two");
  call("/two");
  Trace::workFor("/three", false);
  call("/two");
  const auto sut = seen();
  ASSERT_THAT(sut, SizeIs(2));
  EXPECT_EQ(sut[0].who, "/one>/two Ifc.method");
  EXPECT_EQ(sut[0].figures.count, 2U);
  EXPECT_EQ(sut[1].who, "/three>/two Ifc.method");
  EXPECT_EQ(sut[1].figures.count, 1U);
}

TEST_F(TheSeenCalls, TellHowManyFailed) {
  SeenCalls::start();
  call("/two");
  call("/two", "no answer");
  const auto sut = seen();
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].figures.count, 2U);
  EXPECT_EQ(sut[0].figures.failures, 1U);
}

TEST_F(TheSeenCalls, TellHowLongHalfOfThemTookToAnEighth) {
  SeenCalls::start();
  for (const int took : {1, 100, 2, 90, 10}) {
    SeenCalls::add(0, {"/one", "/two", "Ifc", "method"}, took * kMillisecond, false);
  }
  const auto median = static_cast<double>(medianOf(seen().at(0).figures.times));
  EXPECT_NEAR(median, 10 * kMillisecond, 1.25 * kMillisecond);
}

TEST_F(TheSeenCalls, TellATimeToAnEighthUpToHalfAnHour) {
  for (std::int64_t took = 1; took <= std::int64_t{1800} * 1000 * kMillisecond;
       took += took / 7 + 1) {
    SeenCalls::start();
    SeenCalls::add(0, {"/one", "/two", "Ifc", "method"}, took, false);
    const auto median = static_cast<double>(medianOf(seen().at(0).figures.times));
    EXPECT_NEAR(median, static_cast<double>(took), static_cast<double>(took) / 8) << took;
  }
}

TEST_F(TheSeenCalls, AreNotCountedUntilThatIsStarted) {
  SeenCalls::start();
  SeenCalls::stop();
  call("/two");
  EXPECT_THAT(seen(), IsEmpty());
}

TEST_F(TheSeenCalls, AreNotCountedForATraceThatHasEndedToo) {
  SeenCalls::start();
  call("/two");
  start();
  lines();
  letAllocationFail(1);
  call("/two");
  EXPECT_TRUE(allocationIsToFail()) << "the trace would need some for a call that is new to it";
  letAllocationFail(0);
}

TEST_F(TheSeenCalls, AreInATraceToo) {
  SeenCalls::start();
  start();
  call("/two");
  EXPECT_THAT(lines("calls"), SizeIs(1));
  EXPECT_THAT(seen(), SizeIs(1));
}

TEST_F(TheSeenCalls, GoOnWhenATraceEnds) {
  SeenCalls::start();
  start();
  lines();
  call("/two");
  EXPECT_THAT(seen(), SizeIs(1));
}

TEST_F(TheSeenCalls, AreNotWhatATraceAloneCounts) {
  SeenCalls::start();
  SeenCalls::stop();
  start();
  call("/two");
  EXPECT_THAT(seen(), IsEmpty());
}

TEST_F(TheSeenCalls, AreToldAgainEachTimeWithAllThatWasCounted) {
  SeenCalls::start();
  call("/two");
  EXPECT_EQ(seen().at(0).figures.count, 1U);
  EXPECT_EQ(seen().at(0).figures.count, 1U);
  call("/two");
  EXPECT_EQ(seen().at(0).figures.count, 2U);
}

TEST_F(TheSeenCalls, BeginWithNothingWhenTheyAreStartedAgain) {
  SeenCalls::start();
  for (std::size_t number = 0; number <= SeenCalls::kMost; ++number) call(std::to_string(number));
  SeenCalls::start();
  EXPECT_THAT(seen(), IsEmpty());
  EXPECT_EQ(SeenCalls::others().count, 0U);
}

TEST_F(TheSeenCalls, TellApartNoMoreThanTheyHaveRoomForAndCountTheOthers) {
  SeenCalls::start();
  for (std::size_t number = 0; number < SeenCalls::kMost; ++number) call(std::to_string(number));
  call("/over");
  call("/over", "no answer");
  call("/over the limit");
  call("0");
  EXPECT_THAT(seen(), SizeIs(SeenCalls::kMost));
  EXPECT_EQ(SeenCalls::others().count, 3U);
  EXPECT_EQ(SeenCalls::others().failures, 1U);
}

TEST_F(TheSeenCalls, WithoutMemoryCountAmongTheOthers) {
  SeenCalls::start();
  const CallKey key{"/one", "/two", "Ifc", "method"};
  letAllocationFail(1);
  SeenCalls::add(0, key, 1, false);
  EXPECT_THAT(seen(), IsEmpty());
  EXPECT_EQ(SeenCalls::others().count, 1U);
}

TEST_F(TheSeenCalls, OfManyThreadsAreAllCountedWhileSomebodyLooks) {
  SeenCalls::start();
  constexpr std::size_t kThreads = 4;
  constexpr unsigned kCalls = 2000;
  concurrently(kThreads + 1, [](std::size_t thread) {
    if (thread == kThreads) {
      for (int look = 0; look < 20; ++look) seen();
      return;
    }
    Trace::workFor("/" + std::to_string(thread), false);
    for (unsigned number = 0; number < kCalls; ++number) call("/two", number == 0 ? "bad" : "");
  });
  const auto sut = seen();
  EXPECT_THAT(sut, SizeIs(kThreads));
  EXPECT_THAT(sut, Each(Field(&Seen::figures, Field(&CallFigures::count, kCalls))));
  EXPECT_THAT(sut, Each(Field(&Seen::figures, Field(&CallFigures::failures, 1U))));
}

TEST_F(TheSeenCalls, OfAThreadAreThoseOfTheServiceThatStartedIt) {
  struct Body : Threadable {
    void run() override { call("/two"); }
  };
  SeenCalls::start();
  Trace::workFor("/one", false);
  Body body;
  Threader().spawn(nullptr, &body, "a name", THREAD_PRIORITY_NORMAL, 0);
  body.waitForThreadCompletion();
  const auto sut = seen();
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].who, "/one>/two Ifc.method");
}

/** An interface that nobody serves. */
struct Nobody {
  virtual int ask() = 0;

 protected:
  ~Nobody() = default;
};

struct NobodyProxy final : rmi::ProxyOf<Nobody> {
  int ask() override { return call(ZERVA_METHOD(Nobody::ask)); }
};

TEST_F(TheSeenCalls, AreToldByProxies) {
  SeenCalls::start();
  CommsChannel channel("/one", nullptr);
  ProtocolRepository protocols;
  ProxyRequestImpl request(&channel, "/none", "NobodyIfc", "zerva_simple_rmi",
                           protocols.findProtocolAdapter("zerva_simple_rmi"), "", nullptr);
  NobodyProxy proxy;
  proxy.initialise(&request);
  EXPECT_THROW(proxy.ask(), CallException);
  const auto sut = seen();
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].who, ">/none NobodyIfc.ask");
  EXPECT_EQ(sut[0].figures.failures, 1U);
}

TEST_F(TheSeenCalls, HaveMessagesThatWereToBeAnsweredAmongThem) {
  SeenCalls::start();
  CommsChannel channel("/one", nullptr);
  CommsChannelDataContainerMessage message;
  message.setChannel("/none");
  message.setRequestId(1);
  channel.send(message);
  channel.receiveReply(message, 1);
  const auto sut = seen();
  ASSERT_THAT(sut, SizeIs(1));
  EXPECT_EQ(sut[0].who, ">/none .");
}

}  // namespace
}  // namespace zerva
