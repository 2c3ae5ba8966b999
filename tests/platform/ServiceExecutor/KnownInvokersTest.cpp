#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "framework/Invoker.h"
#include "runtime/libServiceExecutor/KnownInvokers.h"

namespace zerva {
namespace {

class SomeInvoker : public Invoker {
 public:
  void invoke(Executable&, ProtocolAdapter&, const std::string&, std::string&) override {}
};

Callee calleeOf(const std::string& interface, const std::string& protocol) {
  return std::make_shared<const CalledIn>(CalledIn{interface, protocol});
}

KnownInvoker known(Invoker& invoker) { return {nullptr, &invoker, nullptr, nullptr}; }

TEST(KnownInvokers, AreFoundByInterfaceAndProtocol) {
  SomeInvoker one;
  SomeInvoker two;
  SomeInvoker three;
  KnownInvokers sut;
  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"), 0).invoker, nullptr);
  sut.add(calleeOf("Wind", "xml"), 0, known(one));
  sut.add(calleeOf("Wind", "rmi"), 0, known(two));
  const Callee rain = calleeOf("Rain", "xml");
  sut.add(rain, 0, known(three));

  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"), 0).invoker, &one);
  EXPECT_EQ(sut.find(calleeOf("Wind", "rmi"), 0).invoker, &two);
  EXPECT_EQ(sut.find(calleeOf("Rain", "xml"), 0).invoker, &three);
  EXPECT_EQ(sut.find(rain, 0).invoker, &three);
  EXPECT_EQ(sut.find(calleeOf("Rain", "rmi"), 0).invoker, nullptr);
  EXPECT_EQ(sut.find(calleeOf("Win", "dxml"), 0).invoker, nullptr);
}

TEST(KnownInvokers, AreNotFoundWhenTheyAreOutOfDate) {
  SomeInvoker one;
  SomeInvoker two;
  SomeInvoker other;
  KnownInvokers sut;
  sut.add(calleeOf("Wind", "xml"), 4, known(one));
  sut.add(calleeOf("Rain", "xml"), 4, known(other));
  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"), 4).invoker, &one);
  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"), 5).invoker, nullptr);

  sut.add(calleeOf("Wind", "xml"), 5, known(two));
  EXPECT_EQ(sut.find(calleeOf("Wind", "xml"), 5).invoker, &two);
  EXPECT_EQ(sut.find(calleeOf("Rain", "xml"), 5).invoker, nullptr);
}

}  // namespace
}  // namespace zerva
