#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

class FormatString : public ConfiguratorTest {
 protected:
  std::string formatted(std::string text) {
    sut->formatString(text);
    expectTrace({});
    return text;
  }
};

TEST_F(FormatString, OfABlankAfterTheKeyword_GluesTheFirstField) {
  EXPECT_EQ(formatted("  service_instance:   MT  libfoo.so\tcreateFoo   "),
            "service_instance:MT libfoo.so createFoo");
  EXPECT_EQ(formatted("service_instance: lib cr"), "service_instance:lib cr");
  EXPECT_EQ(formatted("proxy_info: lib"), "proxy_info:lib");
}

TEST_F(FormatString, OfAFieldAfterTheColon_KeepsIt) {
  EXPECT_EQ(formatted("service_instance:lib   cr"), "service_instance:lib cr");
}

TEST_F(FormatString, OfABlankBeforeTheColon_KeepsBothBlanks) {
  EXPECT_EQ(formatted("service_instance : lib"), "service_instance : lib");
}

TEST_F(FormatString, OfAnEarlierColonInTheFirstWord_KeepsTheBlank) {
  EXPECT_EQ(formatted("a:b: c"), "a:b: c");
}

TEST_F(FormatString, OfTwoColonsInARow_KeepsTheBlank) { EXPECT_EQ(formatted("a:: c"), "a:: c"); }

TEST_F(FormatString, OfAColonAlone_GluesTheNextWord) { EXPECT_EQ(formatted(":  c d"), ":c d"); }

TEST_F(FormatString, OfAColonAtTheEndOfALaterWord_KeepsTheBlank) {
  EXPECT_EQ(formatted("a b:  c"), "a b: c");
}

TEST_F(FormatString, OfAHash_GivesItNoMeaning) {
  EXPECT_EQ(formatted("\t\t#   a note"), "# a note");
  EXPECT_EQ(formatted("#:  a"), "#:a");
}

TEST_F(FormatString, OfNoWord_IsEmpty) {
  EXPECT_EQ(formatted(" \t  \t "), "");
  EXPECT_EQ(formatted(""), "");
}

TEST_F(FormatString, OfOneWord_IsThatWord) {
  EXPECT_EQ(formatted("start_process:"), "start_process:");
  EXPECT_EQ(formatted("  start_process:  "), "start_process:");
  EXPECT_EQ(formatted(" word "), "word");
}

TEST_F(FormatString, OfAReply_CollapsesBlanksOnly) {
  EXPECT_EQ(formatted("found:libA.so,mk Proxy,ch"), "found:libA.so,mk Proxy,ch");
  EXPECT_EQ(formatted("found: libA.so, mk  Proxy ,ch "), "found:libA.so, mk Proxy ,ch");
}

TEST_F(FormatString, OfAnyWhitespace_TakesItAsBlank) {
  EXPECT_EQ(formatted("\r\n\v\fa:\r\nb\vc\fd\te\r\n"), "a:b c d e");
}

TEST_F(FormatString, OfNamesThatLookLikeVariables_SubstitutesNothing) {
  EXPECT_EQ(formatted("a: $HOME ${PATH} %d ~ *"), "a:$HOME ${PATH} %d ~ *");
}

TEST_F(FormatString, OfZeroBytes_KeepsThemInTheirWords) {
  const std::string text("a:\0b  c", 7);
  EXPECT_EQ(formatted(text), std::string("a:\0b c", 6));
}

}  // namespace
}  // namespace zerva::conformance
