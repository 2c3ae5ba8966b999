#include <cstdlib>
#include <thread>

#include "framework/CallException.h"
#include "framework/Dll.h"
#include "framework/Proxy.h"
#include "runtime/libLoggingHandler/LogSettings.h"
#include "tests/support/Concurrently.h"
#include "tests/support/WaitUntil.h"
#include "tests/system/SystemWorld.h"

namespace zerva {
namespace {

using testing::SizeIs;

/** How often a test does its round; more often when the environment says so. */
int rounds(int inShort) {
  const char* const wanted = std::getenv("ZERVA_STRESS_ROUNDS");
  return wanted != nullptr ? std::atoi(wanted) : inShort;
}

class Stress : public testing::Test, protected SystemWorld {
 protected:
  // Calls that fail are what is wanted; each would be logged.
  Stress() { LogSettings::logToStandardError(false); }
  ~Stress() override { LogSettings::logToStandardError(true); }
};

TEST_F(Stress, ProxiesAreFoundUsedAndRemovedByManyAtOnce) {
  start(relays("service_instance: MT", 2));
  concurrently(16, [&](std::size_t thread) {
    for (int round = rounds(20); round > 0; --round) {
      std::string ifc = thread % 2 == 0 ? "RelayIfc1" : "RelayIfc2";
      std::string served = "/test/" + ifc;
      // Nobody else has a proxy of this qualifier, so nobody else uses what is removed.
      std::string qualifier = std::to_string(thread) + "/" + std::to_string(round);
      Proxy* const proxy = sut->findProxy(ifc, served, qualifier);
      auto* const relay = dynamic_cast<Relay*>(proxy);
      ASSERT_NE(relay, nullptr);
      EXPECT_THAT(relay->pass({}), SizeIs(1));
      sut->removeAndDeleteProxyFromRepository(proxy, ifc);
    }
  });
}

TEST_F(Stress, ALazyServiceWhoseCreatorFailsTwiceIsMadeForEverybody) {
  for (int round = rounds(5); round > 0; --round) {
    ::unsetenv("ZERVA_TEST_RELUCTANT");
    const std::string keyword = round % 2 == 0 ? "service_info: ST" : "service_info: MT";
    start(keyword + " libRelay.so createReluctantRelay /test/RelayIfc RelayIfc\n" +
          "proxy_info: libRelayAccess.so createRelayProxy RelayIfc zerva_simple_rmi\n"
          "invoker_info: libRelayAccess.so createRelayInvoker RelayIfc zerva_simple_rmi\n");
    std::atomic<int> failures{0};
    concurrently(16, [&](std::size_t) {
      Relay* const relay = find("RelayIfc");
      ASSERT_NE(relay, nullptr);
      for (;;) {
        try {
          EXPECT_THAT(relay->pass({}), SizeIs(1));
          return;
        } catch (const CallException&) {
          ++failures;
        }
      }
    });
    EXPECT_GE(failures, 2);
    EXPECT_STREQ(std::getenv("ZERVA_TEST_RELUCTANT"), "3");
    end();
  }
}

TEST_F(Stress, LazyServicesFindEachOtherInARingWhileTheyAreMade) {
  for (int round = rounds(6); round > 0; --round) {
    const bool single = round % 2 == 0;
    // Calls of several that go round among services with one thread each wait for one another.
    const std::vector<std::string> way(single ? 0 : 12, "on");
    std::string directives;
    for (const std::string number : {"1", "2", "3"}) {
      directives += "proxy_info: libRelayAccess.so createRelayProxy Ring" + number +
                    " zerva_simple_rmi\ninvoker_info: libRelayAccess.so createRelayInvoker Ring" +
                    number + " zerva_simple_rmi\nservice_info: " + (single ? "ST" : "MT") +
                    " libRing.so createRing" + number + " /test/Ring" + number + " Ring" + number +
                    "\n";
    }
    start(directives);
    concurrently(9, [&](std::size_t thread) {
      Relay* const relay = find("Ring" + std::to_string(thread % 3 + 1));
      ASSERT_NE(relay, nullptr);
      EXPECT_THAT(relay->pass(way), SizeIs(way.size() + 1));
    });
    end();
  }
}

TEST_F(Stress, TimersExpireWhileTheirOwnersAreStoppedAndDeleted) {
  Dll library("libTicking.so");
  const auto* const expiries =
      static_cast<const std::atomic<int>*>(library.symbol("expiriesOfTicking"));
  ASSERT_NE(expiries, nullptr) << library.error();
  for (int round = rounds(20); round > 0; --round) {
    start(
        "service_instance: ST libTicking.so createTicking /test/st StIfc\n"
        "service_instance: MT libTicking.so createTicking /test/mt MtIfc\n"
        "service_legacy: libTicking.so createTicking LegacyIfc\n");
    const int enough = *expiries + round % 5;
    ASSERT_TRUE(waitUntil([&] { return *expiries >= enough; }));
    end();
  }
  EXPECT_GE(*expiries, 20);
}

TEST_F(Stress, ServicesAreShutDownWhileCallsStreamIn) {
  for (int round = rounds(5); round > 0; --round) {
    start(relays("service_instance: MT", 2) + relay("service_instance: ST", "RelayIfc3"));
    std::vector<Relay*> found;
    for (const char* const ifc : {"RelayIfc1", "RelayIfc2", "RelayIfc3"}) {
      found.push_back(find(ifc));
      ASSERT_NE(found.back(), nullptr);
    }
    std::atomic<int> calls{0};
    std::atomic<bool> over{false};
    std::thread stopper([&] {
      EXPECT_TRUE(waitUntil([&] { return calls >= 200; }));
      over = true;
      sut->shutdown();
    });
    concurrently(9, [&](std::size_t thread) {
      try {
        for (;;) {
          found[thread % 3]->pass({"RelayIfc1", "RelayIfc3"});
          ++calls;
        }
      } catch (const CallException& error) {
        EXPECT_TRUE(over) << error.what();
      }
    });
    stopper.join();
    end();
  }
}

}  // namespace
}  // namespace zerva
