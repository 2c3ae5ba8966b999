#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/ZervaException.h"
#include "tests/contract/ContractTest.h"

namespace {

class AMessage : public ContractTest {};
class AProxyRequest : public ContractTest {};
class AnException : public ContractTest {};

TEST_F(AMessage, IsEmptyAtFirst) {
  const CommsChannelDataContainerMessage sut;
  EXPECT_EQ(sut.getChannel(), "");
  EXPECT_EQ(sut.getData(), "");
  EXPECT_EQ(sut.getRequestId(), 0);
  EXPECT_EQ(sut.getError(), "");
}

TEST_F(AMessage, KeepsWhatItWasGiven) {
  CommsChannelDataContainerMessage sut;
  sut.setChannel("/a channel:1");
  sut.setData(std::string("by\0tes", 6));
  sut.setRequestId(17);
  sut.setError("why");
  EXPECT_EQ(sut.getChannel(), "/a channel:1");
  EXPECT_EQ(sut.getData(), std::string("by\0tes", 6));
  EXPECT_EQ(sut.getRequestId(), 17);
  EXPECT_EQ(sut.getError(), "why");
}

TEST_F(AMessage, TakesItsContentsAlongWhenItMoves) {
  CommsChannelDataContainerMessage from;
  from.setData("bytes");
  CommsChannelDataContainerMessage sut = std::move(from);
  EXPECT_EQ(sut.getData(), "bytes");
}

TEST_F(AProxyRequest, NamesTheChannelAndQualifierThatItWasMadeWith) {
  const ProxyRequestImpl sut(nullptr, "/svc", "Ifc", "protocol", nullptr, "qualifier", nullptr);
  EXPECT_EQ(sut.getSvcChannel(), "/svc");
  EXPECT_EQ(sut.getQualifier(), "qualifier");
}

TEST_F(AnException, TellsItsMessageAlsoAfterATripThroughBytes) {
  const ZervaException sut("out of order: \xc3\xa4");
  EXPECT_STREQ(sut.what(), "out of order: \xc3\xa4");
  ZervaException other("other");
  EXPECT_TRUE(other.deserialize(sut.serialize()));
  EXPECT_STREQ(other.what(), sut.what());
}

TEST_F(AnException, RefusesBytesThatAreNotWellFormed) {
  ZervaException sut("unchanged");
  EXPECT_FALSE(sut.deserialize(""));
  EXPECT_FALSE(sut.deserialize("\x01garbage"));
  EXPECT_STREQ(sut.what(), "unchanged");
}

TEST_F(AnException, IsCopiedWithItsMessage) {
  ZervaException one("one");
  const ZervaException two("two");
  const ZervaException copy = one;
  one = two;
  EXPECT_STREQ(copy.what(), "one");
  EXPECT_STREQ(one.what(), "two");
}

}  // namespace
