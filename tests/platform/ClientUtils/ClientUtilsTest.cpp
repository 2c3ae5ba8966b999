#include <gmock/gmock.h>
#include <unistd.h>

#include <thread>

#include "framework/ClientUtils.h"
#include "framework/OSWrappers.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_literals;

TEST(Tokenising, CutsAtEverySeparator) {
  EXPECT_THAT(ClientUtils::tokenizeString("FooIfc BarIfc", " ", true, false),
              ElementsAre("FooIfc", "BarIfc"));
}

TEST(Tokenising, GivesATextWithoutSeparatorWhole) {
  EXPECT_THAT(ClientUtils::tokenizeString("FooIfc", " ", true, false), ElementsAre("FooIfc"));
}

TEST(Tokenising, SkipsEmptyPiecesWhenAskedTo) {
  EXPECT_THAT(ClientUtils::tokenizeString("  a  b ", " ", true, false), ElementsAre("a", "b"));
  EXPECT_THAT(ClientUtils::tokenizeString("", " ", true, false), IsEmpty());
  EXPECT_THAT(ClientUtils::tokenizeString("   ", " ", true, false), IsEmpty());
}

TEST(Tokenising, KeepsEmptyPiecesOtherwise) {
  EXPECT_THAT(ClientUtils::tokenizeString(" a  b ", " ", false, false),
              ElementsAre("", "a", "", "b", ""));
  EXPECT_THAT(ClientUtils::tokenizeString("", " ", false, false), ElementsAre(""));
}

TEST(Tokenising, CutsAtEachCharacterOfTheSeparators) {
  EXPECT_THAT(ClientUtils::tokenizeString("a,b;c", ";,", true, false), ElementsAre("a", "b", "c"));
}

TEST(Tokenising, CutsNowhereWithoutSeparators) {
  EXPECT_THAT(ClientUtils::tokenizeString("a b", "", true, false), ElementsAre("a b"));
}

TEST(Tokenising, KeepsTheSeparatorsAsPiecesWhenAskedTo) {
  EXPECT_THAT(ClientUtils::tokenizeString("a,b;;c", ",;", true, true),
              ElementsAre("a", ",", "b", ";", ";", "c"));
  EXPECT_THAT(ClientUtils::tokenizeString(",a", ",", false, true), ElementsAre("", ",", "a"));
}

TEST(Tokenising, TakesZeroBytesLikeAnyOther) {
  EXPECT_THAT(ClientUtils::tokenizeString("a\0b"s, "\0"s, true, false), ElementsAre("a", "b"));
  EXPECT_THAT(ClientUtils::tokenizeString("a\0b c"s, " ", true, false), ElementsAre("a\0b"s, "c"));
}

TEST(TheCurrentThreadsId, IsTheOneThatTheSystemShows) {
  EXPECT_EQ(OSWrappers::curID(), ::getpid());
  int other = 0;
  std::thread([&] { other = OSWrappers::curID() - ::gettid(); }).join();
  EXPECT_EQ(other, 0);
}

TEST(TheCurrentThreadsId, DiffersFromThreadToThread) {
  int other = 0;
  std::thread([&] { other = OSWrappers::curID(); }).join();

  EXPECT_NE(other, OSWrappers::curID());
}

}  // namespace
