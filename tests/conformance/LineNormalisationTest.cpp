#include <locale>

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

/** What a language might say of characters: a comma is whitespace, a blank is none. */
class OtherCharacters : public std::ctype<char> {
 public:
  OtherCharacters() : std::ctype<char>(classes()) {}

 private:
  static const mask* classes() {
    static std::vector<mask> table(classic_table(), classic_table() + table_size);
    table[','] = space;
    table[' '] = print;
    return table.data();
  }
};

/** Makes a locale the global one as long as it lives. */
class GlobalLocale {
 public:
  explicit GlobalLocale(const std::locale& locale) : before_(std::locale::global(locale)) {}
  ~GlobalLocale() { std::locale::global(before_); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

 private:
  std::locale before_;
};

TEST_F(FormatString, UnderAnotherGlobalLocale_TakesWhatIsWhitespaceThere) {
  std::string line = ",a:,b c,,d,";
  std::string text = ",a b: c,,d ,";
  {
    const GlobalLocale other(std::locale(std::locale::classic(), new OtherCharacters));
    sut->formatString(line);
    sut->formatString(text);
  }
  EXPECT_EQ(line, "a:b c d");
  EXPECT_EQ(text, "a b: c d ");
}

TEST_F(FormatString, UnderAnotherGlobalLocaleBefore_TakesTheOneOfTheCall) {
  {
    const GlobalLocale other(std::locale(std::locale::classic(), new OtherCharacters));
    std::string text = "a,b";
    sut->formatString(text);
  }
  EXPECT_EQ(formatted("a,b  c"), "a,b c");
}

}  // namespace
}  // namespace zerva::conformance
