#include "framework/Dll.h"
#include "tests/contract/ContractTest.h"

namespace {

using testing::HasSubstr;

class ALibrary : public ContractTest {};

TEST_F(ALibrary, ThatOpens_HasNoErrorAndGivesItsSymbols) {
  Dll sut(zerva::contract::library());
  EXPECT_EQ(sut.error(), nullptr);
  void* const address = sut.symbol("contractAnswer");
  EXPECT_EQ(sut.error(), nullptr);
  EXPECT_EQ(reinterpret_cast<zerva::contract::ContractAnswer>(address)(), 42);
}

TEST_F(ALibrary, ThatIsMissing_SaysSoByName) {
  Dll sut("libThatIsNowhere.so");
  ASSERT_NE(sut.error(), nullptr);
  EXPECT_THAT(sut.error(), HasSubstr("libThatIsNowhere.so"));
}

TEST_F(ALibrary, WithoutASymbol_SaysSoByNameUntilTheNextOperationSucceeds) {
  Dll sut(zerva::contract::library());
  EXPECT_EQ(sut.symbol("noSuchFunction"), nullptr);
  ASSERT_NE(sut.error(), nullptr);
  EXPECT_THAT(sut.error(), HasSubstr("noSuchFunction"));
  sut.symbol("contractAnswer");
  EXPECT_EQ(sut.error(), nullptr);
}

TEST_F(ALibrary, TakesANameUpToItsFirstZeroByte) {
  Dll sut(zerva::contract::library() + std::string("\0 and more", 10));
  EXPECT_EQ(sut.error(), nullptr);
  sut.symbol(std::string("contractAnswer\0 and more", 24));
  EXPECT_EQ(sut.error(), nullptr);
}

}  // namespace
