#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/Invoker.h"
#include "runtime/libServiceExecutor/KnownInvokers.h"
#include "tests/support/Concurrently.h"

namespace zerva {
namespace {

class SomeInvoker : public Invoker {
 public:
  void invoke(Executable&, ProtocolAdapter&, const std::string&, std::string&) override {}
};

Callee calleeOf(const std::string& interface, const std::string& protocol) {
  return std::make_shared<const CalledIn>(CalledIn{interface, protocol});
}

TEST(KnownInvokers, AreFoundByInterfaceAndProtocol) {
  SomeInvoker one;
  SomeInvoker two;
  SomeInvoker three;
  KnownInvokers sut;
  EXPECT_EQ(sut.find(calleeOf("Wind", "xml")), nullptr);
  sut.add(calleeOf("Wind", "xml"), {nullptr, &one});
  sut.add(calleeOf("Wind", "rmi"), {nullptr, &two});
  sut.add(calleeOf("Rain", "xml"), {nullptr, &three});

  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"))->invoker, &one);
  EXPECT_EQ(sut.find(calleeOf("Wind", "rmi"))->invoker, &two);
  EXPECT_EQ(sut.find(calleeOf("Rain", "xml"))->invoker, &three);
  EXPECT_EQ(sut.find(calleeOf("Rain", "rmi")), nullptr);
  EXPECT_EQ(sut.find(calleeOf("Win", "dxml")), nullptr);
}

TEST(KnownInvokers, StayWhatTheyWereFirst) {
  SomeInvoker first;
  SomeInvoker later;
  KnownInvokers sut;
  sut.add(calleeOf("Wind", "xml"), {nullptr, &first});
  sut.add(calleeOf("Wind", "xml"), {nullptr, &later});
  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"))->invoker, &first);
}

TEST(KnownInvokers, AddedByManyThreads_AreAllFound) {
  constexpr std::size_t kPairs = 40;
  std::vector<SomeInvoker> invokers(kPairs);
  KnownInvokers sut;
  concurrently(4, [&](std::size_t) {
    for (std::size_t i = 0; i < kPairs; ++i) {
      const Callee callee = calleeOf("Wind" + std::to_string(i), "xml");
      if (sut.find(callee) == nullptr) sut.add(callee, {nullptr, &invokers[i]});
      EXPECT_EQ(sut.find(callee)->invoker, &invokers[i]);
    }
  });
}

}  // namespace
}  // namespace zerva
