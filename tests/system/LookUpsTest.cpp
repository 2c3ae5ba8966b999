#include <atomic>
#include <mutex>
#include <set>

#include "framework/Executable.h"
#include "framework/ServiceRegistryIfc.h"
#include "tests/support/Concurrently.h"
#include "tests/system/SystemWorld.h"

namespace zerva {
namespace {

using testing::SizeIs;

constexpr std::size_t kThreads = 100;

class ALookUp : public testing::Test, protected SystemWorld {};

TEST_F(ALookUp, OfAnUnknownInvokerByAHundredThreads_MakesExactlyOne) {
  start(relay("service_instance: MT", "RelayIfc"));
  std::mutex mutex;
  std::set<Invoker*> found;
  concurrently(kThreads, [&](std::size_t) {
    std::string ifc = "RelayIfc";
    std::string protocol = "zerva_simple_rmi";
    Invoker* const invoker = sut->findInvoker(ifc, protocol);
    const std::lock_guard lock(mutex);
    found.insert(invoker);
  });
  EXPECT_THAT(found, SizeIs(1));
  EXPECT_FALSE(found.contains(nullptr));
  EXPECT_EQ(invokersMade(), 1);
}

TEST_F(ALookUp, OfAnUnknownServiceByAHundredThreads_GivesEachAWorkingProxy) {
  start(relay("service_instance: MT", "RelayIfc"));
  std::atomic<std::size_t> working{0};
  concurrently(kThreads, [&](std::size_t) {
    Relay* const proxy = find("RelayIfc");
    ASSERT_NE(proxy, nullptr);
    // At the same moment as others through proxies whose channels have the same name.
    for (int i = 0; i < 5; ++i) EXPECT_THAT(proxy->pass({}), SizeIs(1));
    ++working;
  });
  EXPECT_EQ(working, kThreads);
  EXPECT_EQ(invokersMade(), 1);
}

TEST_F(ALookUp, OfAnUnknownLazyServiceByAHundredThreads_GivesEachAWorkingProxy) {
  start(relay("service_info: ST", "RelayIfc"));
  concurrently(kThreads, [&](std::size_t) {
    Relay* const proxy = find("RelayIfc");
    ASSERT_NE(proxy, nullptr);
    EXPECT_THAT(proxy->pass({}), SizeIs(1));
  });
}

TEST_F(ALookUp, OfAnInterfaceThatNobodyServes_GivesNothing) {
  start("");
  EXPECT_EQ(find("RelayIfc"), nullptr);
}

TEST_F(ALookUp, OfAServiceWhoseProxyNobodyRecorded_GivesNothing) {
  start("service_instance: MT libRelay.so createRelay /test/relay RelayIfc\n");
  EXPECT_EQ(find("RelayIfc"), nullptr);
}

TEST_F(ALookUp, OfAnInterfaceThatWasTakenBackAtTheRegistry_GivesNothing) {
  start(relays("service_instance: MT", 2));
  auto* const registry = dynamic_cast<ServiceRegistryIfc*>(sut->findService("ServiceRegistryIfc"));
  ASSERT_NE(registry, nullptr);
  registry->unregisterInterface("RelayIfc1", "/test/RelayIfc1");
  EXPECT_EQ(find("RelayIfc1"), nullptr);
  EXPECT_NE(find("RelayIfc2"), nullptr);
}

}  // namespace
}  // namespace zerva
