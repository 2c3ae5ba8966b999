#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

#include "framework/CallException.h"
#include "framework/DecodeException.h"

namespace {

// What fails while it is copied in flight ends the process.
static_assert(std::is_nothrow_copy_constructible_v<CallException>);
static_assert(std::is_nothrow_copy_assignable_v<CallException>);
static_assert(std::is_nothrow_copy_constructible_v<DecodeException>);
static_assert(std::is_nothrow_copy_assignable_v<DecodeException>);

void expectTheCall(const CallException& sut) {
  EXPECT_EQ(sut.getInterface(), "WindIfc");
  EXPECT_EQ(sut.getMethod(), "speed");
  EXPECT_EQ(sut.getChannel(), "/wind");
  EXPECT_EQ(sut.getCause(), "no wind");
  EXPECT_STREQ(sut.what(), "call of WindIfc.speed on channel '/wind' failed: no wind");
}

TEST(ACallException, CopiedFromOneThatIsGone_TellsAllOfTheCall) {
  const auto original = std::make_unique<CallException>("WindIfc", "speed", "/wind", "no wind");
  const CallException sut(*original);
  expectTheCall(sut);
}

TEST(ACallException, AssignedFromAnother_TellsAllOfThatCall) {
  CallException sut("OtherIfc", "other", "/other", "other");
  sut = CallException("WindIfc", "speed", "/wind", "no wind");
  expectTheCall(sut);
}

TEST(ADecodeException, CopiedOrAssigned_TellsTheSame) {
  const DecodeException original("no number");
  const DecodeException copied(original);
  DecodeException assigned("something else");
  assigned = original;
  EXPECT_STREQ(copied.what(), original.what());
  EXPECT_STREQ(assigned.what(), original.what());
}

}  // namespace
