#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "framework/ZervaException.h"

namespace {

using namespace std::string_literals;

std::string bytesOf(const std::string& length, const std::string& message) {
  return "ZEXC\x01" + length + message;
}

class ZervaExceptionBytes : public testing::Test {
 protected:
  void expectRefused(const std::string& bytes) {
    EXPECT_FALSE(sut.deserialize(bytes)) << testing::PrintToString(bytes);
    EXPECT_STREQ(sut.what(), "as it was");
  }

  ZervaException sut{"as it was"};
};

TEST(AZervaException, GivesTheMessageThatItWasMadeWith) {
  const ZervaException sut("no such service");

  EXPECT_STREQ(sut.what(), "no such service");
}

TEST(AZervaException, IsCaughtAsAStandardException) {
  try {
    throw ZervaException("thrown");
  } catch (const std::exception& exception) {
    EXPECT_STREQ(exception.what(), "thrown");
  }
}

TEST(AZervaException, CopiedInFlight_CannotFailAndSharesItsText) {
  static_assert(std::is_nothrow_copy_constructible_v<ZervaException>);
  static_assert(std::is_nothrow_copy_assignable_v<ZervaException>);
  const ZervaException original("long enough that a copy of the text would have to be allocated");

  const ZervaException sut(original);

  EXPECT_EQ(sut.what(), original.what());
}

TEST(AZervaException, KeepsItsTextWhenTheOneThatItWasCopiedFromIsGone) {
  auto original = std::make_unique<ZervaException>("kept");
  const ZervaException sut(*original);

  original.reset();

  EXPECT_STREQ(sut.what(), "kept");
}

TEST(AZervaException, TakesOverTheTextOfAnotherThatIsAssigned) {
  ZervaException sut("one");

  sut = ZervaException("two");

  EXPECT_STREQ(sut.what(), "two");
}

TEST_F(ZervaExceptionBytes, HaveTheSameFormOnEveryMachine) {
  EXPECT_EQ(ZervaException("abc").serialize(), bytesOf("\0\0\0\3"s, "abc"));
  EXPECT_EQ(ZervaException(std::string(0x010203, 'x')).serialize(),
            bytesOf("\0\1\2\3"s, std::string(0x010203, 'x')));
}

TEST_F(ZervaExceptionBytes, CarryTheMessageToAnotherObject) {
  EXPECT_TRUE(sut.deserialize(ZervaException("it broke\nin two").serialize()));

  EXPECT_STREQ(sut.what(), "it broke\nin two");
}

TEST_F(ZervaExceptionBytes, CarryAnEmptyMessage) {
  EXPECT_TRUE(sut.deserialize(ZervaException("").serialize()));

  EXPECT_STREQ(sut.what(), "");
}

TEST_F(ZervaExceptionBytes, CarryBytesOfAnyValue) {
  const auto bytes = ZervaException("a\0b\xff"s).serialize();

  EXPECT_TRUE(sut.deserialize(bytes));

  EXPECT_EQ(sut.serialize(), bytes);
}

TEST_F(ZervaExceptionBytes, DoNotChangeCopiesThatWereMadeBefore) {
  const ZervaException copy(sut);

  EXPECT_TRUE(sut.deserialize(ZervaException("new").serialize()));

  EXPECT_STREQ(copy.what(), "as it was");
}

TEST_F(ZervaExceptionBytes, ThatEndEarly_AreRefusedWhereverTheyEnd) {
  const auto bytes = ZervaException("message").serialize();
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    expectRefused(bytes.substr(0, length));
  }
}

TEST_F(ZervaExceptionBytes, ThatGoOnAfterTheEnd_AreRefused) {
  expectRefused(ZervaException("message").serialize() + "x");
}

TEST_F(ZervaExceptionBytes, WithAnyByteBeforeTheMessageChanged_AreRefused) {
  const auto bytes = ZervaException("message").serialize();
  for (std::size_t at = 0; at < bytes.size() - 7; ++at) {
    auto changed = bytes;
    changed[at] = static_cast<char>(changed[at] ^ 0x40);
    expectRefused(changed);
  }
}

TEST_F(ZervaExceptionBytes, ThatClaimAHugeLength_AreRefused) {
  expectRefused(bytesOf("\xff\xff\xff\xff", "message"));
}

TEST_F(ZervaExceptionBytes, ThatAreSomethingElse_AreRefused) {
  expectRefused("");
  expectRefused("a text that has nothing to do with it");
  expectRefused(std::string(64, '\0'));
}

}  // namespace
