#include "tests/platform/LoggingHandler/LoggingTest.h"
#include "tests/platform/RecordingSink.h"

namespace zerva {
namespace {

class LogLevels : public LoggingTest {
 protected:
  bool on(int level) { return loggingOnAppUni(module.c_str(), level); }
};

TEST_F(LogLevels, GoUpToInformationUnlessSetOtherwise) {
  EXPECT_TRUE(on(1));
  EXPECT_TRUE(on(4));
  EXPECT_FALSE(on(5));
}

TEST_F(LogLevels, OfAllModulesFollowTheDefaultLevel) {
  LogSettings::setDefaultLevel(6);

  EXPECT_TRUE(on(6));
  EXPECT_FALSE(on(7));
}

TEST_F(LogLevels, OfAModuleWithALevelOfItsOwnDoNotFollowTheDefaultLevel) {
  LogSettings::setLevel(module, 5);

  LogSettings::setDefaultLevel(2);

  EXPECT_TRUE(on(5));
  EXPECT_FALSE(on(6));
  EXPECT_FALSE(loggingOnAppUni("some other module", 3));
}

TEST_F(LogLevels, OfAModuleMayBeLowerThanTheDefaultLevel) {
  LogSettings::setLevel(module, 1);

  EXPECT_TRUE(on(1));
  EXPECT_FALSE(on(2));
}

TEST_F(LogLevels, OfOneModuleDoNotTurnOnAnother) {
  LogSettings::setLevel(module, 9);

  EXPECT_TRUE(on(9));
  EXPECT_FALSE(loggingOnAppUni("some other module", 5));
}

TEST_F(LogLevels, AreOnForWhatASinkOfTheProgramTakes) {
  const RecordingSink sink(module, 7);

  EXPECT_TRUE(on(7));
  EXPECT_FALSE(on(8));
  EXPECT_FALSE(loggingOnAppUni("some other module", 5));
}

TEST_F(LogLevels, AreOffAgainWhenTheSinkIsRemoved) {
  { const RecordingSink sink(module, 7); }

  EXPECT_FALSE(on(5));
}

TEST_F(LogLevels, OfANullModuleAreThoseOfAllOthers) {
  EXPECT_TRUE(loggingOnAppUni(nullptr, 4));
  EXPECT_FALSE(loggingOnAppUni(nullptr, 5));
}

}  // namespace
}  // namespace zerva
