#include <gtest/gtest.h>

#include <thread>

#include "host/EndRequest.h"

namespace zerva {
namespace {

TEST(AnEndRequest, ThatNobodyMade_IsWaitedForAsLongAsIsSaid) {
  EndRequest sut;
  sut.wait(std::chrono::milliseconds(1));
  EXPECT_FALSE(sut.made());
}

TEST(AnEndRequest, WakesWhoWaitsWithoutLimit) {
  EndRequest sut;
  std::thread other([&] { sut.make(); });
  sut.wait(std::nullopt);
  EXPECT_TRUE(sut.made());
  other.join();
}

TEST(AnEndRequest, StaysMade) {
  EndRequest sut;
  sut.make();
  sut.make();
  sut.wait(std::nullopt);
  EXPECT_TRUE(sut.made());
}

}  // namespace
}  // namespace zerva
