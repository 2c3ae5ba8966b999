#include <gtest/gtest.h>

#include <string>

#include "framework/DecodeException.h"
#include "host/live/XmlReply.h"

namespace zerva {
namespace {

std::string read(const std::string& value) {
  return readXmlReply("<reply>" + value + "</reply>").dump();
}

TEST(AReply, IsReadWithoutKnowingItsType) {
  EXPECT_EQ(read("<nothing/>"), "null");
  EXPECT_EQ(read("<bool>true</bool>"), "true");
  EXPECT_EQ(read("<bool>false</bool>"), "false");
  EXPECT_EQ(read("<integer>-3</integer>"), "-3");
  EXPECT_EQ(read("<integer>18446744073709551615</integer>"), "18446744073709551615");
  EXPECT_EQ(read("<real>3.5</real>"), "3.5");
  EXPECT_EQ(read("<real>-inf</real>"), "\"real=-inf\"");
  EXPECT_EQ(read("<text>a &lt; b</text>"), "\"a < b\"");
  EXPECT_EQ(read("<text></text>"), "\"\"");
  EXPECT_EQ(read("<bytes>00ff</bytes>"), "\"bytes=00ff\"");
}

TEST(AReply, MayBeAListOfLists) {
  EXPECT_EQ(read(" <list> <integer>1</integer>\n<list><text>a</text></list><list/></list> "),
            "[1,[\"a\"],[]]");
}

TEST(AReply, IsRefusedWhenItIsNone) {
  for (const char* reply :
       {"", "x", "<call/>", "<reply/>", "<reply><integer>1</integer><integer>2</integer></reply>",
        "<reply><what/></reply>", "<reply><integer>x</integer></reply>",
        "<reply><real>x</real></reply>", "<reply><integer>99999999999999999999</integer></reply>",
        "<reply><nothing/>", "<reply><!-- --><nothing/></reply>"}) {
    EXPECT_THROW(readXmlReply(reply), DecodeException) << reply;
  }
}

TEST(AReply, IsRefusedWhenItIsNestedTooDeeply) {
  std::string deep = "<nothing/>";
  for (int level = 0; level < 100; ++level) deep = "<list>" + deep + "</list>";
  EXPECT_THROW(readXmlReply("<reply>" + deep + "</reply>"), DecodeException);
}

}  // namespace
}  // namespace zerva
