#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "framework/DecodeException.h"
#include "rmi/Carried.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "tests/platform/Calls/Carrying.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StrEq;
using testing::ThrowsMessage;

/** What both protocols have to do. */
class AProtocol : public testing::TestWithParam<const char*> {
 protected:
  ProtocolRepository protocols;
  ProtocolAdapter& sut = *protocols.findProtocolAdapter(GetParam());
};

INSTANTIATE_TEST_SUITE_P(OfTheFramework, AProtocol,
                         testing::Values("zerva_simple_rmi", "zerva_svc_xml"),
                         [](const auto& param) { return std::string(param.param); });

TEST_P(AProtocol, HasItsName) { EXPECT_EQ(sut.getProtocol(), GetParam()); }

TEST_P(AProtocol, CarriesTheMethodOfACall) {
  std::string call = "what was there before";
  sut.writeCall("speed", Writing([](ValueWriter& writer) { writer.writeNothing(); }), call);

  EXPECT_EQ(sut.methodOf(call), "speed");
}

TEST_P(AProtocol, CarriesTheArgumentsOfACall) {
  std::string call;
  sut.writeCall("speed", Writing([](ValueWriter& writer) {
                  writer.beginList(2);
                  writer.writeInteger(7);
                  writer.writeText("west");
                  writer.endList();
                }),
                call);
  std::vector<std::string> values;
  Reading reading([&](ValueReader& reader) {
    EXPECT_EQ(reader.beginList(), 2U);
    values.push_back(std::to_string(reader.readInteger()));
    values.push_back(reader.readText());
    reader.endList();
  });
  sut.readCall(call, reading);

  EXPECT_THAT(values, ElementsAre("7", "west"));
}

TEST_P(AProtocol, CarriesIntegersOfEverySize) {
  for (const std::int64_t value :
       {std::int64_t{0}, std::int64_t{-1}, std::int64_t{127}, std::int64_t{128},
        std::int64_t{-32769}, std::int64_t{1} << 40, std::numeric_limits<std::int64_t>::min(),
        std::numeric_limits<std::int64_t>::max()}) {
    const auto reply = written(sut, [&](ValueWriter& writer) { writer.writeInteger(value); });
    readBack(sut, reply, [&](ValueReader& reader) { EXPECT_EQ(reader.readInteger(), value); });
  }
}

TEST_P(AProtocol, CarriesUnsignedIntegersOfEverySize) {
  for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{255}, std::uint64_t{65536},
                                    std::numeric_limits<std::uint64_t>::max()}) {
    const auto reply = written(sut, [&](ValueWriter& writer) { writer.writeUnsigned(value); });
    readBack(sut, reply, [&](ValueReader& reader) { EXPECT_EQ(reader.readUnsigned(), value); });
  }
}

TEST_P(AProtocol, RefusesAnIntegerThatIsTooLargeForASignedOne) {
  const auto reply = written(sut, [](ValueWriter& writer) {
    writer.writeUnsigned(std::uint64_t{std::numeric_limits<std::int64_t>::max()} + 1);
  });
  EXPECT_THROW(readBack(sut, reply, [](ValueReader& reader) { reader.readInteger(); }),
               DecodeException);
}

TEST_P(AProtocol, RefusesANegativeIntegerForAnUnsignedOne) {
  const auto reply = written(sut, [](ValueWriter& writer) { writer.writeInteger(-1); });
  EXPECT_THROW(readBack(sut, reply, [](ValueReader& reader) { reader.readUnsigned(); }),
               DecodeException);
}

TEST_P(AProtocol, CarriesNumbersWithoutLosingABit) {
  for (const double value :
       {0.0, -0.0, 0.1, 1.0 / 3, std::numeric_limits<double>::denorm_min(),
        std::numeric_limits<double>::max(), -std::numeric_limits<double>::infinity()}) {
    const auto reply = written(sut, [&](ValueWriter& writer) { writer.writeReal(value); });
    readBack(sut, reply, [&](ValueReader& reader) {
      const double back = reader.readReal();
      EXPECT_EQ(back, value);
      EXPECT_EQ(std::signbit(back), std::signbit(value));
    });
  }
}

TEST_P(AProtocol, CarriesWhatIsNotANumber) {
  const auto reply = written(sut, [](ValueWriter& writer) { writer.writeReal(std::nan("")); });
  readBack(sut, reply, [](ValueReader& reader) { EXPECT_TRUE(std::isnan(reader.readReal())); });
}

TEST_P(AProtocol, CarriesTruthValues) {
  for (const bool value : {true, false}) {
    const auto reply = written(sut, [&](ValueWriter& writer) { writer.writeBool(value); });
    readBack(sut, reply, [&](ValueReader& reader) { EXPECT_EQ(reader.readBool(), value); });
  }
}

TEST_P(AProtocol, CarriesAnyText) {
  using namespace std::string_literals;
  for (const std::string& text :
       {""s, " "s, "\n\t both \r\n"s, "<&>\"'"s, "zero \0 inside"s, "\x01\xff\xfe"s, "größe €"s,
        "\xc0\x80"s, "\xed\xa0\x80"s, "&amp;"s, std::string(70000, 'x')}) {
    const auto reply = written(sut, [&](ValueWriter& writer) { writer.writeText(text); });
    readBack(sut, reply, [&](ValueReader& reader) { EXPECT_EQ(reader.readText(), text); });
  }
}

TEST_P(AProtocol, CarriesListsInLists) {
  const auto reply = written(sut, [](ValueWriter& writer) {
    writer.beginList(3);
    writer.beginList(0);
    writer.endList();
    writer.beginList(1);
    writer.writeBool(true);
    writer.endList();
    writer.writeNothing();
    writer.endList();
  });
  readBack(sut, reply, [](ValueReader& reader) {
    EXPECT_EQ(reader.beginList(), 3U);
    EXPECT_EQ(reader.beginList(), 0U);
    reader.endList();
    EXPECT_EQ(reader.beginList(), 1U);
    EXPECT_TRUE(reader.readBool());
    reader.endList();
    reader.readNothing();
    reader.endList();
  });
}

TEST_P(AProtocol, CarriesLongLists) {
  for (const std::size_t size : {15U, 16U, 70000U}) {
    const auto reply = written(sut, [&](ValueWriter& writer) {
      writer.beginList(size);
      for (std::size_t i = 0; i < size; ++i) writer.writeUnsigned(i);
      writer.endList();
    });
    readBack(sut, reply, [&](ValueReader& reader) {
      ASSERT_EQ(reader.beginList(), size);
      for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(reader.readUnsigned(), i);
      reader.endList();
    });
  }
}

TEST_P(AProtocol, RefusesAValueOfAnotherKind) {
  const auto reply = written(sut, [](ValueWriter& writer) { writer.writeText("3"); });
  using Read = std::function<void(ValueReader&)>;
  for (const Read& read : {Read([](ValueReader& reader) { reader.readNothing(); }),
                           Read([](ValueReader& reader) { reader.readBool(); }),
                           Read([](ValueReader& reader) { reader.readInteger(); }),
                           Read([](ValueReader& reader) { reader.readUnsigned(); }),
                           Read([](ValueReader& reader) { reader.readReal(); }),
                           Read([](ValueReader& reader) { reader.beginList(); })}) {
    EXPECT_THROW(readBack(sut, reply, read), DecodeException);
  }
}

TEST_P(AProtocol, RefusesWhatIsLeftOver) {
  const auto reply = written(sut, [](ValueWriter& writer) {
    writer.writeBool(true);
    writer.writeBool(true);
  });
  EXPECT_THAT([&] { readBack(sut, reply, [](ValueReader& reader) { reader.readBool(); }); },
              ThrowsMessage<DecodeException>(HasSubstr("nothing more was expected")));
}

TEST_P(AProtocol, RefusesToReadMoreThanThereIs) {
  const auto reply = written(sut, [](ValueWriter& writer) { writer.writeBool(true); });
  EXPECT_THROW(readBack(sut, reply,
                        [](ValueReader& reader) {
                          reader.readBool();
                          reader.readBool();
                        }),
               DecodeException);
}

TEST_P(AProtocol, RefusesEveryReplyThatIsCutShort) {
  const auto reply = written(sut, [](ValueWriter& writer) {
    writer.beginList(3);
    writer.writeText("some text");
    writer.writeReal(0.1);
    writer.writeInteger(100000);
    writer.endList();
  });
  for (std::size_t size = 0; size < reply.size(); ++size) {
    EXPECT_THROW(readBack(sut, reply.substr(0, size),
                          [](ValueReader& reader) {
                            reader.beginList();
                            reader.readText();
                            reader.readReal();
                            reader.readInteger();
                            reader.endList();
                          }),
                 DecodeException)
        << size;
  }
}

TEST_P(AProtocol, RefusesBytesThatAreNoCall) {
  for (const std::string bytes : {"", "\xc1", "garbage"}) {
    EXPECT_THROW(sut.methodOf(bytes + '\xc1'), DecodeException);
  }
}

TEST(SimpleRmi, IsMessagePack) {
  ProtocolRepository protocols;
  std::string call;
  protocols.findProtocolAdapter("zerva_simple_rmi")
      ->writeCall("speed", Writing([](ValueWriter& writer) {
                    writer.beginList(2);
                    writer.writeInteger(-3);
                    writer.writeReal(1.5);
                    writer.endList();
                  }),
                  call);

  using namespace std::string_literals;
  EXPECT_EQ(call, "\xa5speed\x92\xfd\xcb\x3f\xf8\0\0\0\0\0\0"s);
}

/** The call and the reply that docs/call-protocols.md shows. */
void expectTheDocumentedExample(ProtocolAdapter& sut, const std::string& call,
                                const std::string& reply) {
  std::string written;
  sut.writeCall("speed", rmi::Sent<std::tuple<int>>{{3}}, written);
  EXPECT_EQ(written, call);
  sut.writeReply(rmi::Sent<double>{3.5}, written);
  EXPECT_EQ(written, reply);
}

TEST(EachProtocol, HasTheBytesOfItsDocumentedExample) {
  using namespace std::string_literals;
  ProtocolRepository protocols;
  expectTheDocumentedExample(*protocols.findProtocolAdapter("zerva_simple_rmi"),
                             "\xa5\x73\x70\x65\x65\x64\x91\x03"s, "\xcb\x40\x0c\0\0\0\0\0\0"s);
  expectTheDocumentedExample(*protocols.findProtocolAdapter("zerva_svc_xml"),
                             "<call method=\"speed\"><list><integer>3</integer></list></call>",
                             "<reply><real>3.5</real></reply>");
}

TEST(SimpleRmi, DoesNotBelieveAListThatIsLongerThanTheBytes) {
  ProtocolRepository protocols;
  const std::string huge = "\xdd\xff\xff\xff\xff\xc3";
  EXPECT_THAT(
      [&] {
        readBack(*protocols.findProtocolAdapter("zerva_simple_rmi"), huge,
                 [](ValueReader& reader) { reader.beginList(); });
      },
      ThrowsMessage<DecodeException>(StrEq("at byte 0: the list is longer than the bytes")));
}

TEST(SimpleRmi, ReadsWholeNumbersThatAnotherWriterHasShortened) {
  ProtocolRepository protocols;
  readBack(*protocols.findProtocolAdapter("zerva_simple_rmi"), "\x07\xfd", [](ValueReader& reader) {
    EXPECT_EQ(reader.readReal(), 7.0);
    EXPECT_EQ(reader.readReal(), -3.0);
  });
}

TEST(SimpleRmi, ReadsWholeNumbersOfEveryLength) {
  using namespace std::string_literals;
  ProtocolRepository protocols;
  ProtocolAdapter& sut = *protocols.findProtocolAdapter("zerva_simple_rmi");
  const std::vector<std::pair<std::string, std::int64_t>> numbers = {
      {"\x7f"s, 0x7f},
      {"\xcc\xfe"s, 0xfe},
      {"\xcd\xfe\xdc"s, 0xfedc},
      {"\xce\xfe\xdc\xba\x98"s, 0xfedcba98},
      {"\xcf\x76\x54\x32\x10\xfe\xdc\xba\x98"s, 0x76543210fedcba98},
      {"\xd0\x05"s, 5},
      {"\xd1\x05\xff"s, 0x5ff},
      {"\xd2\x05\x00\x00\xff"s, 0x50000ff},
      {"\xd3\x05\x00\x00\x00\x00\x00\x00\xff"s, 0x5000000000000ff},
      {"\xe0"s, -32},
      {"\xd0\x80"s, -128},
      {"\xd1\xff\x00"s, -256},
      {"\xd2\xff\xff\xff\x00"s, -256},
      {"\xd3\xff\xff\xff\xff\xff\xff\xff\x00"s, -256}};
  for (const auto& [bytes, number] : numbers) {
    readBack(sut, bytes, [&](ValueReader& reader) { EXPECT_EQ(reader.readInteger(), number); });
    if (number >= 0) {
      readBack(sut, bytes, [&](ValueReader& reader) {
        EXPECT_EQ(reader.readUnsigned(), static_cast<std::uint64_t>(number));
      });
    }
    EXPECT_THROW(readBack(sut, bytes.substr(0, bytes.size() - 1),
                          [](ValueReader& reader) { reader.readInteger(); }),
                 DecodeException);
  }
}

TEST(SimpleRmi, ReadsTextsAndListsOfEveryForm) {
  using namespace std::string_literals;
  ProtocolRepository protocols;
  ProtocolAdapter& sut = *protocols.findProtocolAdapter("zerva_simple_rmi");
  for (const std::string& head : {"\xa3"s, "\xd9\x03"s, "\xda\x00\x03"s, "\xdb\x00\x00\x00\x03"s,
                                  "\xc4\x03"s, "\xc5\x00\x03"s, "\xc6\x00\x00\x00\x03"s}) {
    readBack(sut, head + "abc", [](ValueReader& reader) { EXPECT_EQ(reader.readText(), "abc"); });
    EXPECT_THROW(readBack(sut, head + "ab", [](ValueReader& reader) { reader.readText(); }),
                 DecodeException);
  }
  for (const std::string& head : {"\x92"s, "\xdc\x00\x02"s, "\xdd\x00\x00\x00\x02"s}) {
    readBack(sut, head + "\xc2\xc3", [](ValueReader& reader) {
      EXPECT_EQ(reader.beginList(), 2U);
      EXPECT_FALSE(reader.readBool());
      EXPECT_TRUE(reader.readBool());
    });
  }
}

TEST(SimpleRmi, ReadsShortRealNumbers) {
  using namespace std::string_literals;
  ProtocolRepository protocols;
  readBack(*protocols.findProtocolAdapter("zerva_simple_rmi"), "\xca\xbf\x40\x00\x00"s,
           [](ValueReader& reader) { EXPECT_EQ(reader.readReal(), -0.75); });
}

TEST(SimpleRmi, RefusesTheKindsThatItDoesNotUse) {
  ProtocolRepository protocols;
  for (const std::string bytes : {"\x81\xc3\xc3", "\xd4\x01\x02", "\xc7\x01\x02\x03", "\xc1"}) {
    EXPECT_THROW(readBack(*protocols.findProtocolAdapter("zerva_simple_rmi"), bytes,
                          [](ValueReader& reader) { reader.readText(); }),
                 DecodeException);
  }
}

// With 32 bits the bytes that such an extension claims cannot even be counted.
TEST(SimpleRmi, RefusesAnExtensionThatIsLargerThanSizesCanCount) {
  ProtocolRepository protocols;
  EXPECT_THAT(
      [&] {
        readBack(*protocols.findProtocolAdapter("zerva_simple_rmi"), "\xc9\xff\xff\xff\xff\x01",
                 [](ValueReader& reader) { reader.readText(); });
      },
      ThrowsMessage<DecodeException>(HasSubstr("at byte 0")));
}

}  // namespace
}  // namespace zerva
