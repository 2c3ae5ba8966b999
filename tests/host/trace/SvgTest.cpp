#include <gtest/gtest.h>

#include "host/trace/Svg.h"
#include "tests/host/trace/SvgPicture.h"

namespace zerva {
namespace {

TEST(ATextInXml, HasItsSpecialCharactersEscaped) {
  EXPECT_EQ(escapeXml("<a & \"b\">"), "&lt;a &amp; &quot;b&quot;&gt;");
}

TEST(ATextInXml, HasAReplacementForWhatXmlHasNoSignFor) {
  EXPECT_EQ(escapeXml("a\x01\xFFz"), "a\xEF\xBF\xBD\xEF\xBF\xBDz");
  EXPECT_EQ(escapeXml("\xC3\xA4"), "\xC3\xA4");
}

TEST(ATextsWidth, IsNoLessThanThatOfTheLettersOfNames) {
  std::string letters = " !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
  for (char letter = '0'; letter <= '9'; ++letter) letters += letter;
  for (char letter = 'A'; letter <= 'Z'; ++letter) letters += letter;
  for (char letter = 'a'; letter <= 'z'; ++letter) letters += letter;
  for (const char letter : letters) {
    const std::string text(1, letter);
    EXPECT_GE(textWidth(text, 10), widthOfLetters(text, 10, false)) << letter;
  }
}

TEST(AShortenedText, IsTheTextWhenThatFits) { EXPECT_EQ(shortened("short", 10, 100), "short"); }

TEST(AShortenedText, KeepsBeginningAndEndAndFits) {
  const std::string text = shortened("/a/very/long/channel/name", 10, 80);
  EXPECT_TRUE(text.starts_with("/a"));
  EXPECT_TRUE(text.ends_with("me"));
  EXPECT_LE(textWidth(text, 10), 80);
}

TEST(AShortenedText, CutsNoCharacterInTwo) {
  const std::string text = shortened("\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4", 10, 35);
  EXPECT_EQ(escapeXml(text), text);
  EXPECT_EQ(text, "\xC3\xA4\xE2\x80\xA6\xC3\xA4");
}

TEST(AShortenedText, IsFoundSoonHoweverLongTheTextIs) {
  const std::string text = shortened(std::string(4'000'000, 'a') + "z", 10, 80);
  EXPECT_EQ(text,
            "aaaaa\xE2\x80\xA6"
            "aaaaz");
}

TEST(AShortenedText, IsNoWiderForBytesThatAreNoText) {
  for (const char byte : {'\x80', '\xFF', '\x01'}) {
    const std::string text = shortened(std::string(1000, byte), 10, 80);
    EXPECT_LE(textWidth(text, 10), 80);
    EXPECT_LT(text.size(), 30U);
  }
}

TEST(AShortenedText, IsEmptyWhereNothingFits) { EXPECT_EQ(shortened("text", 10, 1), ""); }

constexpr char kRules[] = ".head{font-weight:bold}.small{font-size:10px}";

/** A picture of a text and of a box that is as wide as said. */
SvgPicture boxed(const std::string& text, const std::string& cssClass, double width) {
  Svg svg;
  svg.rectangle(10, 10, width, 20, "box");
  svg.text(12, 25, text, cssClass);
  return SvgPicture::read(svg.document(500, 100, "", kRules, ""));
}

TEST(AnSvgPicture, TellsOfATextThatIsWiderThanItsBox) {
  EXPECT_TRUE(boxed("nodes", "head", 60).misfits().empty());
  EXPECT_EQ(boxed("nodes", "head", 30).misfits(),
            std::vector<std::string>{"beyond its box: nodes"});
  // Bold letters are wider than others, and smaller ones narrower.
  const double width = 2 + textWidth("nnnnnnnnnn", 12);
  EXPECT_TRUE(boxed("nnnnnnnnnn", "name", width).misfits().empty());
  EXPECT_FALSE(boxed("nnnnnnnnnn", "head", width).misfits().empty());
  EXPECT_TRUE(boxed("nnnnnnnnnn", "small", width - 10).misfits().empty());
}

TEST(AnSvgPicture, IsWellFormedWhateverItsTexts) {
  Svg sut;
  sut.beginGroup("a", "<tip>\n& \"more\"");
  sut.text(1, 2, "<text>&", "small", Anchor::Middle);
  sut.rectangle(1, 2, 3, 4, "box", "\x02", 1);
  sut.path("M 1 2 L 3 4", "line", "'tip'");
  sut.endGroup();
  const SvgPicture picture = SvgPicture::read(sut.document(100, 50, "a <title>", "", ""));
  EXPECT_EQ(picture.width, 100);
  ASSERT_EQ(picture.texts.size(), 1U);
  EXPECT_EQ(picture.texts[0].text, "<text>&");
}

TEST(ANumberInAPicture, HasOneDecimalAtMost) {
  EXPECT_EQ(Svg::number(1), "1");
  EXPECT_EQ(Svg::number(1.26), "1.3");
  EXPECT_EQ(Svg::number(-0.01), "0");
}

TEST(ATextInXml, HasAReplacementForWhatIsACharacterElsewhereOnly) {
  EXPECT_EQ(escapeXml("a\xEF\xBF\xBE"
                      "b\xEF\xBF\xBF"
                      "c\xEF\xBF\xBD\x01"),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
}  // namespace zerva
