// That the platform tells of what passes through it.

#include <unistd.h>

#include <thread>

#include "framework/CommsChannel.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Dll.h"
#include "framework/Semaphore.h"
#include "framework/Threadable.h"
#include "framework/Threader.h"
#include "tests/platform/Trace/TraceWorld.h"

namespace zerva {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class TheTracedPlatform : public TraceWorld {};

constexpr const char* kRegistryLibrary = ZERVA_LIBRARIES "/libServiceRegistry.so";

TEST_F(TheTracedPlatform, TellsOfALibraryThatIsOpenedAndClosed) {
  start();
  { const Dll library(kRegistryLibrary); }
  const auto all = lines();
  ASSERT_THAT(all, SizeIs(3));
  EXPECT_EQ(all[1].event, "library_opened");
  EXPECT_THAT(all[1].text("library"), EndsWith("libServiceRegistry.so"));
  EXPECT_EQ(all[1].text("error"), "");
  EXPECT_GT(all[1].number("duration"), 0);
  EXPECT_EQ(all[2].event, "library_closed");
}

TEST_F(TheTracedPlatform, TellsWhyALibraryCannotBeOpened) {
  start();
  { const Dll library("/none/libNone.so"); }
  const auto all = lines("library_opened");
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_THAT(all[0].text("error"), HasSubstr("libNone.so"));
}

TEST_F(TheTracedPlatform, TellsOfSymbolsFoundAndNotFound) {
  start();
  {
    Dll library(kRegistryLibrary);
    library.symbol("createServiceRegistry");
    library.symbol("createNothing");
  }
  const auto all = lines("symbol_resolved");
  ASSERT_THAT(all, SizeIs(2));
  EXPECT_EQ(all[0].text("symbol"), "createServiceRegistry");
  EXPECT_EQ(all[0].text("error"), "");
  EXPECT_THAT(all[1].text("error"), HasSubstr("createNothing"));
}

TEST_F(TheTracedPlatform, TellsOfChannels) {
  start();
  { const CommsChannel channel("/one", nullptr); }
  const auto all = lines();
  ASSERT_THAT(all, SizeIs(3));
  EXPECT_EQ(all[1].event, "channel_opened");
  EXPECT_EQ(all[1].text("channel"), "/one");
  EXPECT_EQ(all[2].event, "channel_closed");
  EXPECT_EQ(all[2].text("channel"), "/one");
}

TEST_F(TheTracedPlatform, TellsOfAThreadAndForWhomItWorks) {
  struct Body : Threadable {
    void run() override { TraceEvent(TraceKind::ChannelOpened).write(); }
  };
  start();
  Trace::workFor("/one", true);
  Body body;
  unsigned long id = 0;
  Threader().spawn(&id, &body, "a name", THREAD_PRIORITY_NORMAL, 0);
  body.waitForThreadCompletion();
  const auto all = lines();
  ASSERT_THAT(all, SizeIs(3));
  EXPECT_EQ(all[1].event, "thread_running");
  EXPECT_THAT(all[1].text("body"), HasSubstr("Body"));
  EXPECT_EQ(all[1].threadName, "a name");
  EXPECT_NE(all[1].thread, ::gettid());
  EXPECT_EQ(all[1].service, "/one");
  EXPECT_EQ(all[2].service, "/one");
}

TEST_F(TheTracedPlatform, TellsOfAWaitForASemaphoreWhileAServiceComesUp) {
  Semaphore semaphore(0, 1, false);
  start();
  Trace::workFor("/one", true);
  std::thread giver([&] { semaphore.give(); });
  semaphore.take(-1);
  giver.join();
  // It may have been given before it was asked for.
  semaphore.take(1);
  const auto all = lines("waited");
  ASSERT_FALSE(all.empty());
  EXPECT_EQ(all.back().text("for"), "semaphore");
  EXPECT_GE(all.back().number("duration"), 1000000);
}

TEST_F(TheTracedPlatform, DoesNotTellOfSemaphoresOfServicesAtWork) {
  Semaphore semaphore(0, 1, false);
  start();
  semaphore.take(1);
  EXPECT_THAT(lines("waited"), IsEmpty());
}

TEST_F(TheTracedPlatform, CountsAMessageThatWasToBeAnswered) {
  CommsChannel channel("/one", nullptr);
  start();
  CommsChannelDataContainerMessage message;
  message.setChannel("/none");
  message.setRequestId(1);
  channel.send(message);
  channel.receiveReply(message, 1);
  const auto all = lines("calls");
  ASSERT_THAT(all, SizeIs(1));
  EXPECT_EQ(all[0].text("channel"), "/none");
  EXPECT_EQ(all[0].text("method"), "");
  EXPECT_EQ(all[0].number("failures"), 1);
}

}  // namespace
}  // namespace zerva
