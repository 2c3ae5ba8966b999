#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "host/check/ParsedLine.h"
#include "src/ServiceConfigurator/DirectiveTokeniser.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> cut(const std::string& text) {
  return tokeniseDirective(text.data(), static_cast<int>(text.size()), " ");
}

ParsedLine parsed(const std::string& text) { return ParsedLine({1, text.size(), text, cut(text)}); }

std::vector<std::size_t> columns(const std::string& text) {
  std::vector<std::size_t> columns;
  for (const Word& word : placeTokens(text, cut(text))) columns.push_back(word.column);
  return columns;
}

std::vector<std::string> texts(const std::vector<Word>& words) {
  std::vector<std::string> texts;
  for (const Word& word : words) texts.push_back(word.text);
  return texts;
}

TEST(ThePlacesOfTokens, AreColumnsOfTheLineAsWritten) {
  EXPECT_THAT(columns(" \ta:  b\t c d e"), ElementsAre(3, 7, 10, 12, 14));
}

TEST(ThePlacesOfTokens, AreThoseOfAFieldThatIsGluedToTheKeyword) {
  EXPECT_THAT(columns("a:b c d e"), ElementsAre(1, 3, 5, 7, 9));
}

TEST(ThePlacesOfTokens, AreBehindTheLineForThoseThatWereNotWritten) {
  EXPECT_THAT(columns("a: b  "), ElementsAre(1, 4, 5, 5, 5));
}

TEST(ThePlacesOfTokens, AreRightBehindAnEarlierColon) {
  EXPECT_THAT(columns("a:b: c"), ElementsAre(1, 3, 6, 7, 7));
}

/** Where a token is said to be, it is, whatever the line is made of. */
TEST(ThePlacesOfTokens, AreWhereTheTokensAre) {
  std::mt19937 random(4711);
  const std::string alphabet = "ab:: \t#";
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (std::size_t length = random() % 24; text.size() < length;) {
      text += alphabet[random() % alphabet.size()];
    }
    const auto tokens = cut(text);
    if (tokens.empty() || tokens[0] == "comment") continue;
    const auto sut = placeTokens(text, tokens);
    ASSERT_EQ(sut.size(), tokens.size());
    for (std::size_t at = 1; at < sut.size(); ++at) {
      EXPECT_EQ(text.compare(sut[at].column - 1, tokens[at].size(), tokens[at]), 0) << text;
    }
  }
}

TEST(AParsedLine, KnowsEachKeyword) {
  std::vector<Keyword> keywords;
  for (const std::string& word : directiveKeywords()) {
    keywords.push_back(parsed(word + ": a").keyword());
  }
  EXPECT_THAT(keywords,
              ElementsAre(Keyword::ServiceInstance, Keyword::ServiceInfo, Keyword::ServiceLegacy,
                          Keyword::InvokerInfo, Keyword::ProxyInfo, Keyword::StartProcess));
}

TEST(AParsedLine, AsksForNothingWhenItIsACommentOrHasNoColon) {
  for (const char* text : {"", "  ", "words", "# a: b", "comment: a"}) {
    EXPECT_EQ(parsed(text).keyword(), Keyword::None) << text;
  }
}

TEST(AParsedLine, DoesNotKnowAKeywordWithABlank) {
  EXPECT_EQ(parsed("service_info : a").keyword(), Keyword::Unknown);
}

TEST(AParsedLine, HasItsFieldsBehindTheMode) {
  const ParsedLine sut = parsed("service_info: ST lib creator /channel Ifc Other");
  EXPECT_EQ(sut.library().text, "lib");
  EXPECT_EQ(sut.creator().text, "creator");
  EXPECT_EQ(sut.channel().text, "/channel");
  EXPECT_THAT(texts(sut.interfaces()), ElementsAre("Ifc", "Other"));
  EXPECT_EQ(sut.interfaceList(), "Ifc Other");
}

TEST(AParsedLine, HasItsFieldsBehindTheKeywordWithoutAMode) {
  const ParsedLine sut = parsed("service_info: lib creator /channel");
  EXPECT_EQ(sut.library().text, "lib");
  EXPECT_EQ(sut.channel().text, "/channel");
  EXPECT_THAT(sut.interfaces(), IsEmpty());
}

TEST(AParsedLine, CountsTheInterfacesOfALegacyServiceFromTheFourthToken) {
  EXPECT_THAT(texts(parsed("service_legacy: lib creator A B").interfaces()), ElementsAre("A", "B"));
  EXPECT_THAT(texts(parsed("service_legacy: MT lib creator A B").interfaces()),
              ElementsAre("creator", "A", "B"));
}

TEST(AParsedLine, OfARecordHasOneInterface) {
  const ParsedLine sut = parsed("proxy_info: lib creator Ifc protocol more");
  EXPECT_THAT(texts(sut.interfaces()), ElementsAre("Ifc"));
  EXPECT_EQ(sut.protocol().text, "protocol");
}

TEST(AParsedLine, BreaksTheStartOffWithAModeAndThreeFields) {
  EXPECT_TRUE(parsed("anything: MT a b c").breaksOff());
  EXPECT_FALSE(parsed("anything: MT a b c d").breaksOff());
  EXPECT_FALSE(parsed("anything: a").breaksOff());
  EXPECT_FALSE(parsed("comment: MT a").breaksOff());
}

}  // namespace
}  // namespace zerva
