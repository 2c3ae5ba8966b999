#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "host/live/CallArguments.h"
#include "runtime/libClientUtils/protocols/SvcXmlAdapter.h"

namespace zerva {
namespace {

/** What the service gets, without the elements that are around every call. */
std::string said(const std::vector<std::string>& words) {
  SvcXmlAdapter adapter;
  std::string call;
  adapter.writeCall("m", CallArguments(words), call);
  const std::string begin = "<call method=\"m\"><list>";
  const std::string end = "</list></call>";
  EXPECT_EQ(call.substr(0, begin.size()), begin);
  EXPECT_EQ(call.substr(call.size() - end.size()), end);
  return call.substr(begin.size(), call.size() - begin.size() - end.size());
}

TEST(AnArgument, IsTypedByItsForm) {
  EXPECT_EQ(said({"true"}), "<bool>true</bool>");
  EXPECT_EQ(said({"false"}), "<bool>false</bool>");
  EXPECT_EQ(said({"3"}), "<integer>3</integer>");
  EXPECT_EQ(said({"-3"}), "<integer>-3</integer>");
  EXPECT_EQ(said({"18446744073709551615"}), "<integer>18446744073709551615</integer>");
  EXPECT_EQ(said({"3.5"}), "<real>3.5</real>");
  EXPECT_EQ(said({"1e3"}), "<real>1000</real>");
  EXPECT_EQ(said({"hello"}), "<text>hello</text>");
  EXPECT_EQ(said({""}), "<text></text>");
  EXPECT_EQ(said({"3 metres"}), "<text>3 metres</text>");
  EXPECT_EQ(said({"inf"}), "<text>inf</text>");
  EXPECT_EQ(said({"null"}), "<text>null</text>");
  EXPECT_EQ(said({"\"3\""}), "<text>3</text>");
  EXPECT_EQ(said({"\"open"}), "<text>&quot;open</text>");
}

TEST(AnArgument, ThatIsAListOfJson_IsAList) {
  EXPECT_EQ(said({R"([1, -2, "a", [true, 0.5]])"}),
            "<list><integer>1</integer><integer>-2</integer><text>a</text>"
            "<list><bool>true</bool><real>0.5</real></list></list>");
  EXPECT_EQ(said({"[]"}), "<list></list>");
}

TEST(AnArgument, ThatIsAnObjectOfJson_IsAListInWhichEachKeyIsFollowedByItsValue) {
  EXPECT_EQ(said({R"({"b": 1, "a": null})"}),
            "<list><text>b</text><integer>1</integer><text>a</text><nothing/></list>");
}

TEST(AnArgument, WithAType_IsOfThatType) {
  EXPECT_EQ(said({"real=3"}), "<real>3</real>");
  EXPECT_EQ(said({"real=inf"}), "<real>inf</real>");
  EXPECT_EQ(said({"text=3"}), "<text>3</text>");
  EXPECT_EQ(said({"text=real=3"}), "<text>real=3</text>");
  EXPECT_EQ(said({"text="}), "<text></text>");
  EXPECT_EQ(said({"integer=-3"}), "<integer>-3</integer>");
  EXPECT_EQ(said({"bool=true"}), "<bool>true</bool>");
  EXPECT_EQ(said({"bytes=00ff"}), "<bytes>00ff</bytes>");
  EXPECT_EQ(said({"list=[1]"}), "<list><integer>1</integer></list>");
}

TEST(AnArgument, MayHaveANameBeforeItsType) {
  EXPECT_EQ(said({"speed:real=3"}), "<real>3</real>");
  EXPECT_EQ(said({"to:text=a:b=c"}), "<text>a:b=c</text>");
}

TEST(AnArgument, WithAnEqualsSignBehindWhatIsNoType_IsAText) {
  EXPECT_EQ(said({"key=3"}), "<text>key=3</text>");
  EXPECT_EQ(said({"a:b=3"}), "<text>a:b=3</text>");
}

TEST(AnArgument, IsRefusedWhenItsValueIsNotOfItsType) {
  for (const char* word : {"real=x", "integer=3.5", "integer=", "bool=yes", "bytes=0", "list=3",
                           "list=[", "n:integer=18446744073709551616"}) {
    EXPECT_THROW(readArgument(word), std::invalid_argument) << word;
  }
  try {
    readArgument("speed:real=x");
    FAIL() << "it was taken";
  } catch (const std::invalid_argument& error) {
    EXPECT_STREQ(error.what(), "'speed:real=x': 'x' is no value of type real");
  }
}

TEST(Arguments, KeepTheirOrder) {
  EXPECT_EQ(said({"1", "b:text=two", "3.0"}), "<integer>1</integer><text>two</text><real>3</real>");
  EXPECT_EQ(said({}), "");
}

}  // namespace
}  // namespace zerva
