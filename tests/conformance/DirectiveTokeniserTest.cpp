#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ParseDirectives : public ConfiguratorTest {
 protected:
  std::vector<std::string> parsed(const std::string& text, const std::string& separators = " ") {
    const auto tokens =
        sut->parseDirectives(text.data(), static_cast<int>(text.size()), separators);
    expectTrace({});
    return tokens;
  }
};

TEST_F(ParseDirectives, OfAKeywordAndFields_GivesThemInOrder) {
  EXPECT_THAT(parsed("service_legacy:MT libfoo.so createFoo fooChan"),
              ElementsAre("service_legacy", "MT", "libfoo.so", "createFoo", "fooChan"));
}

TEST_F(ParseDirectives, OfManyFields_KeepsThemAll) {
  EXPECT_THAT(parsed("k:1 2 3 4 5 6 7"), ElementsAre("k", "1", "2", "3", "4", "5", "6", "7"));
  EXPECT_THAT(parsed("service_instance:MT libfoo.so createFoo fooChan FooIfc"),
              ElementsAre("service_instance", "MT", "libfoo.so", "createFoo", "fooChan", "FooIfc"));
}

TEST_F(ParseDirectives, OfFewFields_FillsUpToFive) {
  EXPECT_THAT(parsed("service_legacy:  libold.so   createOld"),
              ElementsAre("service_legacy", "libold.so", "createOld", "", ""));
  EXPECT_THAT(parsed("k:1 2 3"), ElementsAre("k", "1", "2", "3", ""));
}

TEST_F(ParseDirectives, OfFourFields_FillsNothing) {
  EXPECT_THAT(parsed("k:1 2 3 4"), ElementsAre("k", "1", "2", "3", "4"));
}

TEST_F(ParseDirectives, OfAKeywordAlone_GivesEmptyFields) {
  EXPECT_THAT(parsed("start_process:"), ElementsAre("start_process", "", "", "", ""));
}

TEST_F(ParseDirectives, OfAHashAtTheBeginning_GivesACommentAlone) {
  EXPECT_THAT(parsed("## note: with colon"), ElementsAre("comment"));
  EXPECT_THAT(parsed("#"), ElementsAre("comment"));
  EXPECT_THAT(parsed("#no colon"), ElementsAre("comment"));
}

TEST_F(ParseDirectives, OfWhitespaceBeforeAHash_GivesACommentAlone) {
  EXPECT_THAT(parsed(" \t # note: x"), ElementsAre("comment"));
}

TEST_F(ParseDirectives, OfAHashElsewhere_GivesItNoMeaning) {
  EXPECT_THAT(parsed("k:# 1"), ElementsAre("k", "#", "1", "", ""));
  EXPECT_THAT(parsed("a #: b"), ElementsAre("a #", "", "b", "", ""));
}

TEST_F(ParseDirectives, OfNoColon_GivesNothing) {
  EXPECT_THAT(parsed("just words"), IsEmpty());
  EXPECT_THAT(parsed("words # and a hash"), IsEmpty());
}

TEST_F(ParseDirectives, OfNoText_GivesNothing) {
  EXPECT_THAT(parsed(""), IsEmpty());
  EXPECT_THAT(parsed(" \t \r "), IsEmpty());
}

TEST_F(ParseDirectives, OfNoKeyword_GivesAnEmptyOne) {
  EXPECT_THAT(parsed(":x y"), ElementsAre("", "x", "y", "", ""));
  EXPECT_THAT(parsed(":"), ElementsAre("", "", "", "", ""));
}

TEST_F(ParseDirectives, OfSeveralColons_DividesAtTheFirst) {
  EXPECT_THAT(parsed("k:a:b :c"), ElementsAre("k", "a:b", ":c", "", ""));
}

TEST_F(ParseDirectives, OfABlankBeforeTheColon_KeepsItInTheKeyword) {
  EXPECT_THAT(parsed("service_instance : lib"),
              ElementsAre("service_instance ", "", "lib", "", ""));
}

TEST_F(ParseDirectives, OfAReply_KeepsEmptyFields) {
  EXPECT_THAT(parsed("found:libA.so,mkProxy,,FooIfc", ","),
              ElementsAre("found", "libA.so", "mkProxy", "", "FooIfc"));
  EXPECT_THAT(parsed("k:,,", ","), ElementsAre("k", "", "", "", ""));
}

TEST_F(ParseDirectives, OfASeparatorAtTheEnd_GivesAnEmptyLastField) {
  EXPECT_THAT(parsed("k:1,2,3,4,", ","), ElementsAre("k", "1", "2", "3", "4", ""));
}

TEST_F(ParseDirectives, OfAReplyWithABlankAfterTheColon_IsAsWithout) {
  EXPECT_EQ(parsed("found: a", ","), parsed("found:a", ","));
}

TEST_F(ParseDirectives, OfAReplyWithBlanksInAField_KeepsOneOfThem) {
  EXPECT_THAT(parsed("found:mk   Proxy, b ,c", ","),
              ElementsAre("found", "mk Proxy", " b ", "c", ""));
}

TEST_F(ParseDirectives, OfSeveralSeparators_CutsAtEach) {
  EXPECT_THAT(parsed("k:a,b;c d", ",; "), ElementsAre("k", "a", "b", "c", "d"));
}

TEST_F(ParseDirectives, OfNoSeparator_CutsNothing) {
  EXPECT_THAT(parsed("k:a,b c", ""), ElementsAre("k", "a,b c", "", "", ""));
}

TEST_F(ParseDirectives, OfAShorterLength_UsesThatManyCharacters) {
  const char* line = "keyword:field and more";
  EXPECT_THAT(sut->parseDirectives(line, 11, " "), ElementsAre("keyword", "fie", "", "", ""));
  EXPECT_THAT(sut->parseDirectives(line, 3, " "), IsEmpty());
  EXPECT_THAT(sut->parseDirectives(line, 0, " "), IsEmpty());
}

TEST_F(ParseDirectives, OfATextThatIsNotTerminated_StopsAtItsLength) {
  const std::vector<char> line{'k', ':', 'a'};
  EXPECT_THAT(sut->parseDirectives(line.data(), 3, " "), ElementsAre("k", "a", "", "", ""));
}

TEST_F(ParseDirectives, OfAZeroWithinTheLength_KeepsWhatFollows) {
  EXPECT_THAT(parsed(std::string("k:a\0b c", 7)),
              ElementsAre("k", std::string("a\0b", 3), "c", "", ""));
}

}  // namespace
}  // namespace zerva::conformance
