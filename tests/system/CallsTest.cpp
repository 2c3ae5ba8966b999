#include <algorithm>

#include "framework/CallException.h"
#include "tests/support/Concurrently.h"
#include "tests/system/SystemWorld.h"

namespace zerva {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/** A way through relays one after the other, from the first to the last, so many times. */
std::vector<std::string> wayThrough(int first, int last, int times = 1) {
  std::vector<std::string> way;
  for (; times > 0; --times) {
    for (int i = first; i <= last; ++i) way.push_back("RelayIfc" + std::to_string(i));
  }
  return way;
}

class ACallAcrossServices : public testing::Test, protected SystemWorld {};

TEST_F(ACallAcrossServices, ThroughMoreServicesThanThePoolHasThreads_ComesBack) {
  constexpr int kServices = 60;  // the configurator's pool has 50
  start(relays("service_instance: MT", kServices));
  EXPECT_THAT(find("RelayIfc1")->pass(wayThrough(2, kServices)), SizeIs(kServices));
}

TEST_F(ACallAcrossServices, ThroughManyServicesWithAThreadEach_ComesBack) {
  constexpr int kServices = 60;
  start(relays("service_instance: ST", kServices));
  EXPECT_THAT(find("RelayIfc1")->pass(wayThrough(2, kServices)), SizeIs(kServices));
}

TEST_F(ACallAcrossServices, BackToServicesThatAreThemselvesWaiting_ComesBack) {
  for (const char* const keyword : {"service_instance: ST", "service_instance: MT"}) {
    start(relays(keyword, 3));
    EXPECT_THAT(find("RelayIfc1")->pass(wayThrough(1, 3, 10)), SizeIs(31)) << keyword;
    end();
  }
}

TEST_F(ACallAcrossServices, ThroughLazyServicesThatAreMadeOnTheWay_ComesBack) {
  start(relays("service_info: ST", 4) + relay("service_info: MT", "RelayIfc5"));
  EXPECT_THAT(find("RelayIfc1")->pass(wayThrough(2, 5)), SizeIs(5));
}

TEST_F(ACallAcrossServices, WithoutEnd_EndsWithAnErrorAndNotWithAHang) {
  start(relays("service_instance: ST", 2));
  EXPECT_THAT([&] { find("RelayIfc1")->pass(wayThrough(1, 2, 200)); },
              testing::ThrowsMessage<CallException>(HasSubstr("requests inside each other")));
  EXPECT_THAT(find("RelayIfc1")->pass(wayThrough(2, 2)), SizeIs(2)) << "it serves no longer";
}

TEST_F(ACallAcrossServices, ThatFailsFarAway_SaysWhereAndWhy) {
  start(relays("service_instance: MT", 3));
  auto way = wayThrough(2, 3);
  way.emplace_back("throw");
  EXPECT_THAT([&] { find("RelayIfc1")->pass(way); },
              testing::ThrowsMessage<CallException>(
                  testing::AllOf(HasSubstr("RelayIfc3"), HasSubstr("no way"))));
}

TEST_F(ACallAcrossServices, MadeByManyAtOnceInBothDirections_ComesBackToEach) {
  start(relays("service_instance: MT", 4));
  concurrently(20, [&](std::size_t thread) {
    Relay* const first = find(thread % 2 == 0 ? "RelayIfc1" : "RelayIfc4");
    ASSERT_NE(first, nullptr);
    auto way = wayThrough(1, 4, 3);
    if (thread % 2 != 0) std::reverse(way.begin(), way.end());
    for (int i = 0; i < 5; ++i) EXPECT_THAT(first->pass(way), SizeIs(13));
  });
}

}  // namespace
}  // namespace zerva
