#include <gtest/gtest.h>

#include <thread>

#include "runtime/libClientUtils/bus/FrameBuffer.h"
#include "runtime/libClientUtils/bus/Frames.h"
#include "runtime/libClientUtils/bus/WireNumbers.h"

namespace {

using namespace zerva;
using testing::HasSubstr;

/** The bytes that hexadecimal digits stand for. */
std::string bytes(const std::string& hex) {
  std::string result;
  std::string digits;
  for (const char character : hex) {
    if (character != ' ') digits += character;
    if (digits.size() == 2) {
      result += static_cast<char>(std::stoi(digits, nullptr, 16));
      digits.clear();
    }
  }
  return result;
}

/** A frame as it goes over the wire, without its length. */
std::string body(const std::string& frame) { return frame.substr(4); }

std::string whyMalformed(const std::string& frameBody) {
  const Frame frame = decodeFrame(frameBody);
  const auto* const malformed = std::get_if<MalformedFrame>(&frame);
  return malformed != nullptr ? malformed->why : "it is a frame";
}

const MessageFrame kMessage{0x0102030405060708, {0x11, 0x22}, "/a", "/b", "hi"};

// The example of docs/wire-format.md.
const std::string kHelloBytes =
    bytes("00 00 00 1f 01 5a 52 56 42 00 01 00 16") + "12345-0123456789abcdef";
const std::string kRequestBytes = bytes(
    "00 00 00 38 05 00 00 00 01 00 00 00 07"
    "00 04 57 69 6e 64 00 03 78 6d 6c"
    "01 02 03 04 05 06 07 08 00 02"
    "00 00 00 00 00 00 00 11 00 00 00 00 00 00 00 22"
    "00 02 2f 61 00 02 2f 62 68 69");
const std::string kReplyBytes = bytes("00 00 00 07 06 00 00 00 01 6f 6b");

TEST(TheWireFormat, HasTheBytesOfTheDocumentedExampleWhateverTheWordSize) {
  EXPECT_EQ(encodeHead(HelloFrame{1, "12345-0123456789abcdef"}), kHelloBytes);
  EXPECT_EQ(encodeHead(RequestFrame{1, 7, "Wind", "xml", kMessage}) + "hi", kRequestBytes);
  EXPECT_EQ(encodeHead(ReplyFrame{1, "ok"}) + "ok", kReplyBytes);
}

TEST(AFrame, OfTheDocumentedExample_IsRead) {
  const std::string bytesOfFrame = body(kRequestBytes);
  const Frame frame = decodeFrame(bytesOfFrame);
  const auto& request = std::get<RequestFrame>(frame);
  EXPECT_EQ(request.wireId, 1U);
  EXPECT_EQ(request.requestId, 7U);
  EXPECT_EQ(request.interface, "Wind");
  EXPECT_EQ(request.protocol, "xml");
  EXPECT_EQ(request.message.chain, kMessage.chain);
  EXPECT_EQ(request.message.links, kMessage.links);
  EXPECT_EQ(request.message.from, "/a");
  EXPECT_EQ(request.message.to, "/b");
  EXPECT_EQ(request.message.data, "hi");
}

TEST(AFrame, OfEachKind_IsReadAsItWasWritten) {
  const std::string welcome = body(encodeHead(WelcomeFrame{9, "id"}));
  const std::string crossed = body(encodeHead(CrossedFrame{}));
  const std::string message = body(encodeHead(kMessage)) + "hi";
  const std::string failure = body(encodeHead(FailureFrame{3, "why"})) + "why";
  const Frame welcomeRead = decodeFrame(welcome);
  EXPECT_EQ(std::get<WelcomeFrame>(welcomeRead).version, 9);
  EXPECT_EQ(std::get<WelcomeFrame>(welcomeRead).id, "id");
  EXPECT_TRUE(std::holds_alternative<CrossedFrame>(decodeFrame(crossed)));
  EXPECT_EQ(std::get<MessageFrame>(decodeFrame(message)).to, "/b");
  EXPECT_EQ(std::get<FailureFrame>(decodeFrame(failure)).wireId, 3U);
  EXPECT_EQ(std::get<FailureFrame>(decodeFrame(failure)).error, "why");
}

TEST(AFrame, ThatIsCutAnywhereBeforeItsData_IsMalformed) {
  const std::string request = body(encodeHead(RequestFrame{1, 7, "Wind", "xml", kMessage}));
  const std::string hello = body(kHelloBytes);
  for (std::size_t length = 0; length < request.size(); ++length) {
    EXPECT_NE(whyMalformed(request.substr(0, length)), "it is a frame") << length;
  }
  for (std::size_t length = 0; length < hello.size(); ++length) {
    EXPECT_NE(whyMalformed(hello.substr(0, length)), "it is a frame") << length;
  }
}

TEST(AFrame, OfAnUnknownType_IsMalformed) {
  EXPECT_THAT(whyMalformed("\x63whatever"), HasSubstr("unknown type 99"));
  EXPECT_THAT(whyMalformed(std::string(1, '\0')), HasSubstr("unknown type 0"));
  EXPECT_THAT(whyMalformed(""), HasSubstr("unknown type 0"));
}

TEST(AFrame, WithIdsThatNobodyGives_IsMalformed) {
  MessageFrame noChain = kMessage;
  noChain.chain = 0;
  MessageFrame noLinks = kMessage;
  noLinks.links.clear();
  MessageFrame tooDeep = kMessage;
  tooDeep.links.assign(257, 1);
  for (const auto& message : {noChain, noLinks, tooDeep}) {
    EXPECT_EQ(whyMalformed(body(encodeHead(message)) + "hi"), "a frame that is no message");
  }
  EXPECT_EQ(whyMalformed(body(encodeHead(RequestFrame{0, 7, {}, {}, kMessage})) + "hi"),
            "a frame that is no request");
  EXPECT_EQ(whyMalformed(body(encodeHead(RequestFrame{1, 0, {}, {}, kMessage})) + "hi"),
            "a frame that is no request");
  EXPECT_EQ(whyMalformed(body(encodeHead(FailureFrame{1, ""}))), "a frame that is no failure");
}

TEST(AHello, WithMoreBehindIt_IsMalformedUnlessItIsOfAnotherVersion) {
  EXPECT_EQ(whyMalformed(body(kHelloBytes) + "x"), "a frame that is no hello");
  const std::string later = body(encodeHead(HelloFrame{2, "id"})) + "something new";
  EXPECT_EQ(std::get<HelloFrame>(decodeFrame(later)).version, 2);
}

TEST(AFrameBuffer, GivesEachFrameWhenItIsWholeHoweverItArrives) {
  FrameBuffer sut(100);
  std::vector<std::string> got;
  for (const char byte : kHelloBytes + kReplyBytes) {
    sut.append({&byte, 1});
    std::string_view frame;
    Payload data;
    while (sut.next(frame, data) == FrameBuffer::Next::Whole) got.emplace_back(frame);
  }
  EXPECT_EQ(got, (std::vector<std::string>{body(kHelloBytes), body(kReplyBytes)}));
  EXPECT_EQ(sut.held(), 0U);
}

TEST(AFrameBuffer, GivesAllFramesThatArriveAtOnce) {
  FrameBuffer sut(100);
  sut.append(kHelloBytes + kReplyBytes + kReplyBytes.substr(0, 5));
  std::string_view frame;
  Payload data;
  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Whole);
  EXPECT_EQ(frame, body(kHelloBytes));
  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Whole);
  EXPECT_EQ(frame, body(kReplyBytes));
  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Incomplete);
  EXPECT_EQ(sut.held(), 5U);
}

TEST(AFrameBuffer, TakesAFrameAsLongAsTheLimitAndNoneThatIsLonger) {
  FrameBuffer sut(7);
  std::string_view frame;
  Payload data;
  sut.append(kReplyBytes);
  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Whole);
  sut.append(kHelloBytes.substr(0, 4));
  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::TooLong);
}

/** What a frame of a length begins with. */
std::string lengthOf(std::uint32_t length) {
  std::string number;
  appendNumber(number, length);
  return number;
}

TEST(AFrameBuffer, HasRoomForTheRestOfALongFrameAsSoonAsItsLengthIsThere) {
  constexpr std::uint32_t kLong = 100'000;
  FrameBuffer sut(kMaximumFrame);
  sut.append(lengthOf(kLong));
  EXPECT_GE(sut.room()[1].size(), kLong);
}

TEST(AFrameBuffer, HasNoMoreRoomThanAFewTimesWhatHasArrivedWhateverAFrameSays) {
  FrameBuffer sut(kMaximumFrame);
  sut.append(lengthOf(kMaximumFrame));
  for (std::size_t arrived = 4; arrived < kMaximumFrame; arrived += 1000) {
    sut.append(std::string(1000, 'x'));
    ASSERT_LE(sut.capacity(), std::max(FrameBuffer::kAtOnce, 2 * sut.held()));
  }
}

TEST(AFrameBuffer, HasNoRoomForAFrameThatIsLongerThanTheLimit) {
  FrameBuffer sut(kMaximumGreeting);
  sut.append(lengthOf(kMaximumFrame));
  EXPECT_FALSE(sut.room()[1].empty());
  EXPECT_LT(sut.capacity(), FrameBuffer::kAtOnce);
}

TEST(AFrameBuffer, GrowsAFewTimesOnlyWhileALongFrameArrives) {
  FrameBuffer sut(kMaximumFrame);
  sut.append(lengthOf(kMaximumFrame));
  std::size_t before = sut.capacity();
  int growths = 0;
  while (sut.held() < kMaximumFrame) {
    sut.append(std::string(1000, 'x'));
    growths += sut.capacity() != before ? 1 : 0;
    before = sut.capacity();
  }
  EXPECT_LE(growths, 10);
}

TEST(AFrameBuffer, DoesNotKeepWhatOneLongFrameNeeded) {
  FrameBuffer sut(kMaximumFrame);
  sut.append(lengthOf(kMaximumFrame) + std::string(kMaximumFrame, 'x'));
  std::string_view frame;
  Payload data;
  ASSERT_EQ(sut.next(frame, data), FrameBuffer::Next::Whole);
  EXPECT_EQ(frame, std::string(kMaximumFrame, 'x'));
  sut.append("x");
  EXPECT_LT(sut.capacity(), FrameBuffer::kAtOnce);
}

TEST(AFrameBuffer, GivesAFrameThatArrivesBehindManyShortOnes) {
  const std::string last(50'000, 'l');
  FrameBuffer sut(kMaximumFrame);
  std::string all;
  for (int i = 0; i < 5000; ++i) all += kReplyBytes;
  all += lengthOf(50'000) + last;
  std::string got;
  std::size_t count = 0;
  for (std::size_t at = 0; at < all.size(); at += 777) {
    sut.append(std::string_view(all).substr(at, 777));
    std::string_view frame;
    Payload data;
    while (sut.next(frame, data) == FrameBuffer::Next::Whole) {
      got = frame;
      ++count;
    }
  }
  EXPECT_EQ(count, 5001U);
  EXPECT_EQ(got, last);
}

/** A buffer that puts the data of long frames apart. */
struct ABufferOfLongFrames : testing::Test {
  /** All frames that are whole now, put together again. */
  void take() {
    std::string_view frame;
    while (sut.next(frame, data) == FrameBuffer::Next::Whole) {
      got.push_back(std::string(frame) + (data != nullptr ? *data : std::string()));
      apart += data != nullptr ? 1 : 0;
    }
  }

  static std::string reply(std::size_t size, char what = 'x') {
    const std::string text(size, what);
    return encodeHead(ReplyFrame{1, text}) + text;
  }

  FrameBuffer sut{kMaximumFrame, &sizeBeforeData};
  std::vector<std::string> got;
  int apart = 0;
  Payload data;
};

TEST_F(ABufferOfLongFrames, PutsTheirDataApartWithoutTheirHeads) {
  const std::string whole = reply(70'000);
  sut.append(std::string_view(whole).substr(0, 5000));
  std::string_view frame;
  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Incomplete);
  EXPECT_EQ(sut.held(), 5000U);
  // Where the rest goes is where it stays.
  const char* const place = sut.room()[0].data();
  sut.append(std::string_view(whole).substr(5000));

  EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Whole);

  EXPECT_EQ(frame, bytes("06 00 00 00 01"));
  EXPECT_EQ(*data, std::string(70'000, 'x'));
  EXPECT_EQ(data->data() + 5000 - 9, place);
  EXPECT_EQ(sut.held(), 0U);
}

TEST_F(ABufferOfLongFrames, GivesLongAndShortOnesInOrderHoweverTheyArrive) {
  std::string all;
  std::vector<std::string> wanted;
  char what = 'a';
  for (const std::size_t size : {3, 20'000, 9, 70'000, 65'536, 17'000, 0, 300'000, 12'000, 5}) {
    for (int i = 0; i < 3; ++i) {
      wanted.push_back(body(reply(size, what++)));
      all += reply(size, static_cast<char>(what - 1));
    }
  }
  for (const std::size_t piece :
       std::vector<std::size_t>{1, 777, 4096, 30000, 100000, all.size()}) {
    got.clear();
    apart = 0;
    for (std::size_t at = 0; at < all.size(); at += piece) {
      sut.append(std::string_view(all).substr(at, piece));
      take();
    }
    ASSERT_EQ(got, wanted) << piece;
    EXPECT_EQ(sut.held(), 0U);
    EXPECT_EQ(apart > 0, piece < all.size());
  }
}

TEST_F(ABufferOfLongFrames, PutsNothingApartBeforeTheWholeHeadIsThere) {
  const std::string name(60'000, 'n');
  const std::string text(50'000, 'x');
  const std::string whole = encodeHead(MessageFrame{1, {2}, name, name, text}) + text;
  for (std::size_t at = 0; at < whole.size(); at += 1000) {
    sut.append(std::string_view(whole).substr(at, 1000));
    take();
  }
  EXPECT_EQ(got, std::vector<std::string>{body(whole)});
  EXPECT_EQ(apart, 1);
}

TEST_F(ABufferOfLongFrames, LeavesThoseWithoutDataWhole) {
  const std::string why(50'000, 'w');
  const std::string whole = encodeHead(FailureFrame{1, why}) + why;
  sut.append(std::string_view(whole).substr(0, 1000));
  sut.append(std::string_view(whole).substr(1000));
  take();
  EXPECT_EQ(got, std::vector<std::string>{body(whole)});
  EXPECT_EQ(apart, 0);
}

TEST_F(ABufferOfLongFrames, HasNoMoreRoomThanAFewTimesWhatHasArrivedWhateverOneSays) {
  const std::string whole = reply(kMaximumFrame - 5);
  for (std::size_t at = 0; at < whole.size(); at += 1000) {
    sut.append(std::string_view(whole).substr(at, 1000));
    // Besides that which short ones arrive in.
    ASSERT_LE(sut.capacity(), 32 * 1024 + std::max(FrameBuffer::kAtOnce, 2 * sut.held()));
  }
  take();
  EXPECT_EQ(got, std::vector<std::string>{body(whole)});
}

TEST_F(ABufferOfLongFrames, UsesTheMemoryOfOneThatNobodyHasAnyMore) {
  const std::string whole = reply(65'536);
  const auto carry = [&] {
    for (std::size_t at = 0; at < whole.size(); at += 30'000) {
      sut.append(std::string_view(whole).substr(at, 30'000));
    }
    std::string_view frame;
    EXPECT_EQ(sut.next(frame, data), FrameBuffer::Next::Whole);
    EXPECT_EQ(*data, std::string(65'536, 'x'));
    return std::exchange(data, nullptr);
  };
  Payload first = carry();
  const char* const place = first->data();
  EXPECT_NE(carry()->data(), place);  // it is still somebody's
  first.reset();
  // The last one that was given back, or the one before.
  const Payload one = carry();
  const Payload other = carry();
  EXPECT_TRUE(one->data() == place || other->data() == place);
}

TEST_F(ABufferOfLongFrames, LeavesThemToWhoeverHasThemWhenItIsGone) {
  {
    FrameBuffer shortLived(kMaximumFrame, &sizeBeforeData);
    const std::string whole = reply(65'536);
    shortLived.append(std::string_view(whole).substr(0, 100));
    shortLived.append(std::string_view(whole).substr(100));
    std::string_view frame;
    EXPECT_EQ(shortLived.next(frame, data), FrameBuffer::Next::Whole);
  }
  EXPECT_EQ(*data, std::string(65'536, 'x'));
  std::thread([&] { data.reset(); }).join();
}

TEST(ASpareText, IsOneOfAFewThatAreNotTooLong) {
  const auto sut = std::make_shared<SpareText>();
  for (const std::size_t size : {20'000, 200'000, 60'000, 5'000'000, 100'000}) {
    std::vector<std::shared_ptr<std::string>> used;
    for (int i = 0; i < 8; ++i) {
      used.push_back(SpareText::make(sut, size));
      EXPECT_EQ(used.back()->size(), size);
    }
    used.clear();
    EXPECT_GT(sut->kept(), 0U);
    EXPECT_LE(sut->kept(), SpareText::kMost);
  }
}

}  // namespace
