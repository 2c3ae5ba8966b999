#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <utility>

#include "framework/Threader.h"
#include "runtime/libClientUtils/CallChain.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "runtime/libClientUtils/Parker.h"
#include "tests/platform/ClientUtils/FunctionBody.h"
#include "tests/support/NoMemory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

// A thread that could not get the place where it waits ended as soon as it was made; its service
// stood there and answered nobody.
TEST(AThread, ThatOnlyWaits_NeedsNoMemoryOfItsOwn) {
  std::weak_ptr<Parker> place;
  FunctionBody sut([&] {
    letAllocationFail(1);
    place = Parker::ofThisThread();
    EXPECT_FALSE(Parker::ofThisThread()->park(Clock::now()));
    EXPECT_TRUE(allocationIsToFail()) << "it took some";
    letAllocationFail(0);
  });
  ASSERT_TRUE(Threader().spawn(nullptr, &sut, "waits", THREAD_PRIORITY_NORMAL, 0));
  sut.waitForThreadCompletion();
  EXPECT_TRUE(place.expired());
}

// A pool waits for threads that have ended wherever it needs another one, and while it goes down.
TEST(AThread, IsWaitedForWithoutMemory) {
  FunctionBody sut([] {});
  ASSERT_TRUE(Threader().spawn(nullptr, &sut, "ends", THREAD_PRIORITY_NORMAL, 0));
  letAllocationFail(1);
  sut.waitForThreadCompletion();
  EXPECT_TRUE(allocationIsToFail()) << "it took some";
  letAllocationFail(0);
}

TEST(AMessage, ThatNoOtherWaitsFor_NeedsNoMemoryForItsChain) {
  letAllocationFail(1);
  const CallChain request = CallChain::begin();
  const CallChain message = request.ofMessage();
  EXPECT_TRUE(allocationIsToFail()) << "it took some";
  letAllocationFail(0);
  EXPECT_TRUE(message.sameAs(request));
  EXPECT_TRUE(request.ofRequest().isAwaitedBy(request));
}

/** Takes requests and does not answer them. */
class KeepingReceiver final : public RequestReceiver {
 public:
  bool receive(Envelope& envelope) override {
    kept = std::make_unique<Envelope>(std::move(envelope));
    received = true;
    return true;
  }
  bool waitsForCaller() const override { return false; }
  const Executable* object() const override { return nullptr; }
  bool isMaking() const override { return false; }

  std::unique_ptr<Envelope> kept;
  std::atomic<bool> received{false};
};

TEST(AChannel, ThatIsClosedWithoutMemory_WakesWhoWaitsOnItAllTheSame) {
  const auto receiver = std::make_shared<KeepingReceiver>();
  const auto served = std::make_shared<Mailbox>("/svc", nullptr);
  ChannelDirectory::instance().add(served);
  served->serveWith(receiver);
  const auto sut = std::make_shared<Mailbox>("/test/caller", nullptr);
  Mailbox::Outcome outcome;
  std::thread waiting([&] { outcome = sut->call(sharedName("/svc"), nullptr, nullptr, 1); });
  EXPECT_TRUE(waitUntil([&] { return receiver->received.load(); }));

  letAllocationFail(1);
  sut->close();
  EXPECT_FALSE(allocationIsToFail()) << "it takes none";
  letAllocationFail(0);
  waiting.join();

  EXPECT_EQ(outcome.error, "closed");
  receiver->kept.reset();
  served->close();
  ChannelDirectory::instance().remove(*served);
  served->waitForDeliveries();
}

}  // namespace
}  // namespace zerva
