#include <gtest/gtest.h>

#include "runtime/libClientUtils/trace/TraceBuffers.h"
#include "tests/support/NoMemory.h"

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

TEST_F(TheTracesBuffers, HoldWhatASingleThreadAddsAsFarAsAllOfThemMayGrow) {
  const std::string record(1024, 'x');
  const std::size_t fitting =
      (TraceBuffers::kMost - (TraceBuffers::kBuffers - 1) * TraceBuffers::kBytes) / record.size();
  for (std::size_t number = 0; number < fitting + 7; ++number) sut.add(3, record);
  EXPECT_EQ(taken().size(), fitting * record.size());
  EXPECT_EQ(sut.takeLost(), 7U);
  EXPECT_EQ(sut.takeLost(), 0U);
}

TEST_F(TheTracesBuffers, KeepTheOrderOfAddingWhenTheyGrow) {
  std::string all;
  for (char letter = 'a'; letter <= 'z'; ++letter) {
    const std::string record(TraceBuffers::kBytes / 3, letter);
    sut.add(0, record);
    all += record;
  }
  EXPECT_TRUE(taken() == all);
}

TEST_F(TheTracesBuffers, CountEveryRecordForWhichThereIsNoMemoryWhenTheyAreTaken) {
  for (int number = 0; number < 5; ++number) sut.add(0, std::string(100, 'x'));
  std::string records;
  letAllocationFail(1);
  sut.takeAll(records);
  letAllocationFail(0);
  EXPECT_EQ(records, "");
  EXPECT_EQ(sut.takeLost(), 5U);
}

TEST_F(TheTracesBuffers, LoseARecordWhenThereIsNoMemoryToGrow) {
  const std::string record(TraceBuffers::kBytes, 'x');
  sut.add(0, record);
  letAllocationFail(1);
  sut.add(0, record);
  EXPECT_FALSE(allocationIsToFail());
  sut.add(0, record);
  EXPECT_EQ(taken().size(), 2 * record.size());
  EXPECT_EQ(sut.takeLost(), 1U);
}

TEST_F(TheTracesBuffers, HaveRoomAgainWhenTheyWereEmptied) {
  const std::string record(TraceBuffers::kBytes, 'x');
  for (std::size_t round = 0; round < 2 * TraceBuffers::kMost / record.size(); ++round) {
    sut.add(1, record);
    sut.add(1, record);
    EXPECT_EQ(taken().size(), 2 * record.size());
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
