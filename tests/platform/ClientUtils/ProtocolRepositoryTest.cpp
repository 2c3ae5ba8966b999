#include <gtest/gtest.h>

#include "framework/ProtocolAdapter.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "tests/support/Concurrently.h"

namespace {

class NamedAdapter : public ProtocolAdapter {
 public:
  explicit NamedAdapter(std::string protocol) : protocol_(std::move(protocol)) {}
  const std::string& getProtocol() const override { return protocol_; }
  void writeCall(const std::string&, const Writable&, std::string&) override {}
  std::string methodOf(const std::string&) override { return {}; }
  void readCall(const std::string&, Readable&) override {}
  void writeReply(const Writable&, std::string&) override {}
  void readReply(const std::string&, Readable&) override {}

 private:
  const std::string protocol_;
};

TEST(AProtocolRepository, FindsAdaptersByTheirProtocol) {
  NamedAdapter one("one");
  NamedAdapter two("two");
  ProtocolRepository sut;
  sut.addProtocolAdapter(&one);
  sut.addProtocolAdapter(&two);

  EXPECT_EQ(sut.findProtocolAdapter("one"), &one);
  EXPECT_EQ(sut.findProtocolAdapter("two"), &two);
}

TEST(AProtocolRepository, KnowsTheFrameworksProtocolsFromTheStart) {
  ProtocolRepository sut;

  EXPECT_NE(sut.findProtocolAdapter("zerva_simple_rmi"), nullptr);
  EXPECT_NE(sut.findProtocolAdapter("zerva_svc_xml"), nullptr);
}

TEST(AProtocolRepository, FindsNothingForAProtocolThatIsNotKnown) {
  ProtocolRepository sut;

  EXPECT_EQ(sut.findProtocolAdapter("one"), nullptr);
}

TEST(AProtocolRepository, FindsTheAdapterThatWasAddedLast) {
  NamedAdapter older("one");
  NamedAdapter newer("one");
  ProtocolRepository sut;
  sut.addProtocolAdapter(&older);
  sut.addProtocolAdapter(&newer);

  EXPECT_EQ(sut.findProtocolAdapter("one"), &newer);
}

TEST(AProtocolRepository, IgnoresANullAdapter) {
  ProtocolRepository sut;

  sut.addProtocolAdapter(nullptr);

  EXPECT_EQ(sut.findProtocolAdapter(""), nullptr);
}

TEST(AProtocolRepository, IsUsedByManyThreadsAtOnce) {
  NamedAdapter first("0");
  NamedAdapter second("1");
  ProtocolRepository sut;

  zerva::concurrently(2, [&](std::size_t thread) {
    NamedAdapter* const mine = thread == 0 ? &first : &second;
    for (int i = 0; i < 100; ++i) {
      sut.addProtocolAdapter(mine);
      EXPECT_EQ(sut.findProtocolAdapter(mine->getProtocol()), mine);
    }
  });
}

}  // namespace
