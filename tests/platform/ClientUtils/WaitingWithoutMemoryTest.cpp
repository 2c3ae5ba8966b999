#include <gtest/gtest.h>

#include <memory>

#include "framework/Threader.h"
#include "runtime/libClientUtils/CallChain.h"
#include "runtime/libClientUtils/Parker.h"
#include "tests/platform/ClientUtils/FunctionBody.h"
#include "tests/support/NoMemory.h"

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

}  // namespace
}  // namespace zerva
