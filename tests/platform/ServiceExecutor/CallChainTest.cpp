#include <gtest/gtest.h>

#include "runtime/libClientUtils/CallChain.h"

namespace {

using zerva::CallChain;

/** What becomes of a chain on its way through another process. */
CallChain carried(const CallChain& chain) {
  return CallChain::ofOtherProcess(chain.id(), chain.links());
}

TEST(ACallChain, IsTheSameAfterItsWayThroughAnotherProcess) {
  const CallChain sut = CallChain::begin().ofRequest().ofRequest();
  EXPECT_TRUE(carried(sut).sameAs(sut));
  EXPECT_EQ(carried(sut).length(), 3U);
  EXPECT_EQ(carried(sut).links(), sut.links());
}

TEST(ACallChain, ThatComesBackFromAnotherProcess_IsAwaitedByTheRequestThatItIsMadeFor) {
  const CallChain waiting = CallChain::begin().ofRequest();
  const CallChain sut = carried(carried(waiting.ofRequest()).ofRequest());
  EXPECT_TRUE(sut.isAwaitedBy(waiting));
  EXPECT_FALSE(waiting.isAwaitedBy(sut));
}

TEST(ACallChain, OfAMessageThatNobodyWaitsFor_IsAwaitedByNobodyAfterItsWayThroughAnotherProcess) {
  const CallChain sender = CallChain::begin().ofRequest();
  const CallChain sut = carried(sender.ofMessage());
  EXPECT_TRUE(sut.sameAs(sender));
  EXPECT_FALSE(sut.isAwaitedBy(sender));
}

TEST(ACallChain, IsToldFromAnotherOne) {
  EXPECT_FALSE(CallChain::begin().sameAs(CallChain::begin()));
  EXPECT_FALSE(carried(CallChain::begin()).sameAs(CallChain::begin()));
}

TEST(ACallChain, ThatIsNone_IsAwaitedByNobodyAndAwaitsNobody) {
  const CallChain none;
  const CallChain sut = CallChain::begin().ofRequest();
  EXPECT_FALSE(sut.isAwaitedBy(none));
  EXPECT_FALSE(none.isAwaitedBy(sut));
  EXPECT_TRUE(none.links().empty());
}

}  // namespace
