#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/ZervaException.h"
#include "registry/RegistryText.h"

namespace zerva {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::ThrowsMessage;

TEST(ARegistryText, IsTakenApartAtItsColonAndItsCommas) {
  const RegistryText sut = parseRegistryText("reg_proxy:libA.so,createA,AIfc,zerva_simple_rmi");
  EXPECT_EQ(sut.word, "reg_proxy");
  EXPECT_THAT(sut.fields, ElementsAre("libA.so", "createA", "AIfc", "zerva_simple_rmi"));
}

TEST(ARegistryText, KeepsEmptyFieldsBlanksAndFurtherColons) {
  EXPECT_THAT(parseRegistryText("reg_invoker:,, A:Ifc ,").fields,
              ElementsAre("", "", " A:Ifc ", ""));
}

TEST(ARegistryText, OfEachKindHasItsNumberOfFields) {
  EXPECT_EQ(parseRegistryText("find:AIfc,/host").fields.size(), 2U);
  EXPECT_EQ(parseRegistryText("find_proxy:AIfc").fields.size(), 1U);
  EXPECT_EQ(parseRegistryText("find_invoker:AIfc,p").fields.size(), 2U);
}

TEST(ARegistryText, ThatAsksForAService_LeavesTheNameOfTheAskersChannelWhole) {
  EXPECT_THAT(parseRegistryText("find:AIfc,/a, b,").fields, ElementsAre("AIfc", "/a, b,"));
  EXPECT_THROW(parseRegistryText("find:AIfc"), ZervaException);
}

TEST(ARegistryText, WithAnotherNumberOfFieldsIsRefusedWithBothNumbers) {
  EXPECT_THAT([] { parseRegistryText("reg_proxy:libA.so,createA,AIfc"); },
              ThrowsMessage<ZervaException>(HasSubstr("has 3 fields where 4 are expected")));
  EXPECT_THAT([] { parseRegistryText("find_proxy:AIfc,BIfc"); },
              ThrowsMessage<ZervaException>(HasSubstr("has 2 fields where 1 are expected")));
}

TEST(ARegistryText, ThatIsNoneIsRefused) {
  EXPECT_THAT([] { parseRegistryText("find"); },
              ThrowsMessage<ZervaException>(HasSubstr("'find' has no colon")));
  EXPECT_THAT([] { parseRegistryText(""); },
              ThrowsMessage<ZervaException>(HasSubstr("has no colon")));
  EXPECT_THAT([] { parseRegistryText("Find:AIfc,/host"); },
              ThrowsMessage<ZervaException>(HasSubstr("a word that is not known")));
}

TEST(ARegistryText, ThatIsRefusedIsShownInOneShortLine) {
  EXPECT_THAT([] { parseRegistryText("a\nb\x01" + std::string(1000, 'x')); },
              ThrowsMessage<ZervaException>(
                  AllOf(HasSubstr("'a?b?xxx"), HasSubstr("x...'"), Not(HasSubstr("\n")))));
}

}  // namespace
}  // namespace zerva
