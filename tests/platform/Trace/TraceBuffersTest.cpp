#include <gtest/gtest.h>

#include "runtime/libClientUtils/trace/TraceBuffers.h"

namespace zerva {
namespace {

class TheTracesBuffers : public testing::Test {
 protected:
  TheTracesBuffers() { sut.reserve(); }

  std::string taken() {
    std::string records;
    sut.takeAll(records);
    return records;
  }

  TraceBuffers sut;
};

TEST_F(TheTracesBuffers, GiveBackWhatWasAddedOnce) {
  sut.add(0, "one");
  sut.add(0, "two");
  EXPECT_EQ(taken(), "onetwo");
  EXPECT_EQ(taken(), "");
}

TEST_F(TheTracesBuffers, DoNotGrowAndCountWhatFindsNoRoom) {
  const std::string record(1000, 'x');
  const std::size_t fitting = TraceBuffers::kBytes / record.size();
  for (std::size_t number = 0; number < fitting + 7; ++number) sut.add(3, record);
  EXPECT_EQ(taken().size(), fitting * record.size());
  EXPECT_EQ(sut.takeLost(), 7U);
  EXPECT_EQ(sut.takeLost(), 0U);
}

TEST_F(TheTracesBuffers, HaveRoomAgainWhenTheyWereEmptied) {
  const std::string record(TraceBuffers::kBytes, 'x');
  for (int round = 0; round < 5; ++round) {
    sut.add(1, record);
    EXPECT_EQ(taken().size(), record.size());
  }
  EXPECT_EQ(sut.takeLost(), 0U);
}

TEST_F(TheTracesBuffers, TellOnceThatOneIsHalfFull) {
  const std::string record(TraceBuffers::kBytes / 4, 'x');
  EXPECT_FALSE(sut.add(0, record));
  EXPECT_TRUE(sut.add(0, record));
  EXPECT_FALSE(sut.add(0, record));
}

}  // namespace
}  // namespace zerva
