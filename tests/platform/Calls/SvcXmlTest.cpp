#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/DecodeException.h"
#include "runtime/libClientUtils/protocols/SvcXmlAdapter.h"
#include "tests/platform/Calls/Carrying.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

void expectRefused(const std::string& reply, const std::string& why) {
  SvcXmlAdapter sut;
  EXPECT_THAT([&] { readBack(sut, reply, [](ValueReader& reader) { reader.readText(); }); },
              ThrowsMessage<DecodeException>(HasSubstr(why)))
      << reply;
}

TEST(SvcXml, IsReadableByPeople) {
  SvcXmlAdapter sut;
  std::string call;
  sut.writeCall("report", Writing([](ValueWriter& writer) {
                  writer.beginList(5);
                  writer.writeInteger(-3);
                  writer.writeReal(4.5);
                  writer.writeText("a < b");
                  writer.writeText(std::string("\0\xff", 2));
                  writer.writeBool(true);
                  writer.endList();
                }),
                call);
  EXPECT_EQ(call,
            "<call method=\"report\"><list><integer>-3</integer><real>4.5</real>"
            "<text>a &lt; b</text><bytes>00ff</bytes><bool>true</bool></list></call>");
}

TEST(SvcXml, SaysNothingInOneElement) {
  SvcXmlAdapter sut;
  EXPECT_EQ(written(sut, [](ValueWriter& writer) { writer.writeNothing(); }),
            "<reply><nothing/></reply>");
}

TEST(SvcXml, ReadsWhatAPersonHasLaidOut) {
  SvcXmlAdapter sut;
  readBack(sut,
           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<reply>\n  <list>\n"
           "    <integer>3</integer>\n    <text>&#x67;r&uuml;n</text>\n  </list>\n</reply>\n",
           [](ValueReader& reader) {
             EXPECT_EQ(reader.beginList(), 2U);
             EXPECT_EQ(reader.readInteger(), 3);
             EXPECT_EQ(reader.readText(), "gr&uuml;n");
             reader.endList();
           });
}

TEST(SvcXml, RefusesWhatCallsNeverHold) {
  expectRefused("<reply><!-- why --><text>x</text></reply>", "comments");
  expectRefused("<!DOCTYPE reply><reply><text>x</text></reply>", "document types");
  expectRefused("<reply><text><![CDATA[x]]></text></reply>", "not allowed");
  expectRefused(std::string("<reply>\0</reply>", 16), "zeros");
}

TEST(SvcXml, RefusesAnotherOutermostElement) {
  expectRefused("<call method=\"m\"><text>x</text></call>", "no element 'reply'");
  expectRefused("<?xml version=\"1.0\"?>", "no element 'reply'");
}

TEST(SvcXml, RefusesWhatIsNotWellFormedAndSaysWhere) {
  expectRefused("<reply><text>x</reply>", "at character");
  expectRefused("<reply><text>x</text>", "at character");
}

TEST(SvcXml, RefusesElementsThatWouldExhaustTheStack) {
  std::string deep = "<reply>";
  for (int i = 0; i < 1000000; ++i) deep += "<list>";
  expectRefused(deep, "nested too deeply");
}

TEST(SvcXml, CountsNoDepthWhereQuotesOrEndsHideIt) {
  std::string hidden = "<reply>";
  for (int i = 0; i < 1000; ++i) hidden += "<list a='</list></list>'>";
  expectRefused(hidden, "nested too deeply");
}

// Depths are counted before anything is parsed. A quote in a name, or in a processing instruction,
// was taken for one that begins a value, and hid every element up to the next quote from the count;
// the parser, which sees it otherwise, then went down until the stack was full.
TEST(SvcXml, CountsTheDepthBehindQuotesThatBeginNoValue) {
  for (const std::string hiding :
       {"<a'>", "<a='>", "<a b'=\"1\">", "<a></a'>", "<?x '?>", "<?xml version='?>"}) {
    std::string deep = "<reply>" + hiding;
    for (int i = 0; i < 100000; ++i) deep += "<list>";
    expectRefused(deep, "nested too deeply");
  }
}

// An end of an element in a processing instruction was counted as one, though the parser skips it.
TEST(SvcXml, CountsNoEndInAProcessingInstruction) {
  std::string deep = "<reply>";
  for (int i = 0; i < 100000; ++i) deep += "<list><?x ></list>?>";
  expectRefused(deep, "nested too deeply");
}

// Nodes take many times the four bytes of the text that a parser makes them of.
TEST(SvcXml, RefusesSoManyElementsOrAttributesThatTheyWouldExhaustTheMemory) {
  std::string elements = "<reply>";
  std::string attributes = "<reply";
  for (int i = 0; i < 1'000'001; ++i) {
    elements += "<a/>";
    attributes += " a=''";
  }
  expectRefused(elements + "</reply>", "too many elements");
  expectRefused(attributes + "></reply>", "too many elements");
}

TEST(SvcXml, TakesATextWithAnyNumberOfCharactersThatAttributesHave) {
  SvcXmlAdapter sut;
  const std::string many(2'000'000, '=');
  readBack(sut, "<reply><text>" + many + "</text></reply>",
           [&](ValueReader& reader) { EXPECT_TRUE(reader.readText() == many); });
}

TEST(SvcXml, TakesManyElementsBesideEachOther) {
  SvcXmlAdapter sut;
  std::string wide = "<reply><list>";
  for (int i = 0; i < 1000; ++i) wide += "<nothing/>";
  readBack(sut, wide + "</list></reply>", [](ValueReader& reader) {
    EXPECT_EQ(reader.beginList(), 1000U);
    for (int i = 0; i < 1000; ++i) reader.readNothing();
    reader.endList();
  });
}

TEST(SvcXml, RefusesACallWithoutAMethod) {
  SvcXmlAdapter sut;
  EXPECT_THAT([&] { sut.methodOf("<call><nothing/></call>"); },
              ThrowsMessage<DecodeException>(HasSubstr("names no method")));
}

TEST(SvcXml, RefusesNumbersAndDigitsThatAreNone) {
  SvcXmlAdapter sut;
  for (const std::string text : {"", "3x", " 3", "99999999999999999999", "0x10"}) {
    EXPECT_THROW(readBack(sut, "<reply><integer>" + text + "</integer></reply>",
                          [](ValueReader& reader) { reader.readInteger(); }),
                 DecodeException)
        << text;
  }
  expectRefused("<reply><bytes>0g</bytes></reply>", "hexadecimal");
  expectRefused("<reply><bytes>000</bytes></reply>", "hexadecimal");
}

}  // namespace
}  // namespace zerva
