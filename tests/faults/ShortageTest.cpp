// What runs out or goes wrong around a host, for good and not for one call.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/faults/FaultyLife.h"

namespace zerva {
namespace {

using testing::AnyOf;
using testing::HasSubstr;

TEST(ALife, OnAFullDisk_GoesDownInOrderFromWhicheverWriteOn) {
  for (long write = 1;; ++write) {
    FaultyLife sut("diskfull", write);
    EXPECT_EQ(sut.complaint(), "");
    if (!sut.reached()) {
      EXPECT_GT(write, 1) << "nothing is written to the disk";
      break;
    }
  }
}

TEST(ALife, WhoseWallClockIsPutForwardAndBack_DoesNotCare) {
  FaultyLife sut("clock", 0, {{"ZERVA_BUSY_HOLD", "1"}});
  EXPECT_EQ(sut.complaint(), "");
  for (const char* const what : {"timer", "here", "lazy", "again", "there", "and back"}) {
    EXPECT_THAT(sut.output(), HasSubstr(std::string("busy: ") + what + ": done")) << sut.errors();
  }
  EXPECT_THAT(sut.output(), HasSubstr("did not answer in time"));
  EXPECT_GT(sut.calls(), 0) << "nobody looks at the clock";
}

#if !defined(__SANITIZE_ADDRESS__)

// The sanitizer checks the types of objects through a pipe, and complains when it gets none.
TEST(ALife, WithFewDescriptors_GoesDownInOrderHoweverFewTheyAre) {
  constexpr long kFewest = 3;  // the standard ones
  constexpr long kEnough = 40;
  for (long limit = kFewest; limit <= kEnough; ++limit) {
    FaultyLife sut("descriptors", limit);
    EXPECT_EQ(sut.complaint(), "");
    if (limit == kFewest || limit == kEnough) {
      EXPECT_EQ(sut.lost().empty(), limit == kEnough) << "the limit does not tell";
    }
  }
}

#endif

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

// The sanitizers take more address space for themselves than there is to be limited.
TEST(ALife, WithLittleAddressSpace_GoesDownInOrderHoweverLittleItIs) {
  constexpr long kStep = 256;
  // To what it needs at its height, which is more than there is at first.
  for (long limit = 0;; limit += kStep) {
    FaultyLife sut("space_away", limit);
    // Where the room ends while a proxy is made, what is known of that holds.
    if (!sut.hung()) {
      EXPECT_EQ(sut.complaint(), "");
    } else {
      EXPECT_THAT(sut.errors(), AnyOf(HasSubstr("initProxyAndAddToRepository"),
                                      HasSubstr("still under way, so nothing was deleted")));
    }
    if (testing::Test::HasFailure() ||
        sut.output().find("busy: and back: done") != std::string::npos) {
      EXPECT_GT(limit, 0) << "the limit does not tell";
      break;
    }
  }
}

#endif

}  // namespace
}  // namespace zerva
