#include "framework/ClientUtils.h"
#include "framework/Logging.h"
#include "framework/ZervaVersion.h"
#include "tests/contract/ContractTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Text : public ContractTest {};

TEST_F(Text, IsCutAtEverySeparatorCharacter) {
  EXPECT_THAT(ClientUtils::tokenizeString("a b,c", " ,", true, false), ElementsAre("a", "b", "c"));
  EXPECT_THAT(ClientUtils::tokenizeString("alone", " ", true, false), ElementsAre("alone"));
}

TEST_F(Text, IsCutWithoutEmptyPiecesWhenThatIsAskedFor) {
  EXPECT_THAT(ClientUtils::tokenizeString("  a  b ", " ", true, false), ElementsAre("a", "b"));
  EXPECT_THAT(ClientUtils::tokenizeString("", " ", true, false), IsEmpty());
}

TEST_F(Text, IsCutWithEmptyPiecesOtherwise) {
  EXPECT_THAT(ClientUtils::tokenizeString(" a  b", " ", false, false),
              ElementsAre("", "a", "", "b"));
}

TEST_F(Text, IsCutWithTheSeparatorsWhenThatIsAskedFor) {
  EXPECT_THAT(ClientUtils::tokenizeString("a,b", ",", true, true), ElementsAre("a", ",", "b"));
}

TEST_F(Text, OfTheVersionIsNotEmpty) { EXPECT_NE(ZervaVersion(), ""); }

TEST_F(Text, OfALogLineMayBeOfAnyLevelAndLength) {
  EXPECT_TRUE(loggingOnAppUni("Contract", 1));
  logAppUni("Contract", "tests/contract", 1, __LINE__, "%s and %d", "words", 5);
  logAppUni("Contract", "tests/contract", 9, __LINE__, "%s", std::string(10'000, 'x').c_str());
}

}  // namespace
