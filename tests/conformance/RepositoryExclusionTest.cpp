// What the repository does with its maps happens between the taking and the giving back of their
// semaphores: another thread's change while this one waits is seen, and one afterwards is not.

#include <functional>

#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {
namespace {

struct Lookup {
  const char* name;
  const char* semaphore;
};

class ALookup : public RepositoryTest, public testing::WithParamInterface<Lookup> {
 protected:
  /** As another thread would, which has the semaphores now. */
  void fill() {
    sut->svcMap.insert({"FooIfc", SvcData{service, nullptr, channel, nullptr}});
    sut->proxyMap.insert({"FooIfc", SvcProxyData{proxy, nullptr, request, nullptr}});
    sut->invokerMap.insert({"FooIfc,tcp", SvcInvokerData{invoker, nullptr}});
  }

  void empty() {
    sut->svcMap.clear();
    sut->proxyMap.clear();
    sut->invokerMap.clear();
  }

  /** Whether this lookup finds what it looks for. */
  bool finds() {
    const std::string lookup = GetParam().name;
    if (lookup == "ServiceByName") return findService("FooIfc", "") == service;
    if (lookup == "ServiceByChannel") return findService("FooIfc", "c") == service;
    if (lookup == "ProxyByName") return findProxy("FooIfc") == proxy;
    if (lookup == "ProxyByChannel") return findProxy("FooIfc", "/svc/a", "q") == proxy;
    if (lookup == "Invoker") return findInvoker("FooIfc", "tcp") == invoker;
    if (lookup == "ChannelOfAService") return sut->findSvcChannel(service) == "c";
    if (lookup == "WhetherAServiceIsThere") return sut->containsService(service);
    return sut->getServiceData(service) != nullptr;
  }

  static void when(const std::string& operation, const std::function<void()>& change) {
    Platform::once(GetParam().semaphore + operation, change);
  }

  Service* service = keep(newService());
  CommsChannel* channel = keep(newChannel("c"));
  Proxy* proxy = keep(newProxy());
  ProxyRequestImpl* request = keep(newRequest("/svc/a", "q"));
  Invoker* invoker = keep(newInvoker());
};

TEST_P(ALookup, WhileItWaitsForTheSemaphore_HasReadNothing) {
  when(".take(", [this] { fill(); });
  EXPECT_TRUE(finds());
}

TEST_P(ALookup, WhenItGivesTheSemaphoreBack_HasReadAll) {
  fill();
  when(".give(", [this] { empty(); });
  EXPECT_TRUE(finds());
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, ALookup,
    testing::Values(Lookup{"ServiceByName", "svcMapSem"}, Lookup{"ServiceByChannel", "svcMapSem"},
                    Lookup{"ProxyByName", "proxyMapSem"}, Lookup{"ProxyByChannel", "proxyMapSem"},
                    Lookup{"Invoker", "invokerMapSem"}, Lookup{"ChannelOfAService", "svcMapSem"},
                    Lookup{"WhetherAServiceIsThere", "svcMapSem"},
                    Lookup{"RecordOfAService", "svcMapSem"}),
    [](const auto& parameter) { return parameter.param.name; });

/** What is recorded, by the sizes of the three maps. */
class ARecording : public RepositoryTest {
 protected:
  using Sizes = std::vector<std::size_t>;

  Sizes sizes() const { return {sut->svcMap.size(), sut->proxyMap.size(), sut->invokerMap.size()}; }

  /** Expects that a semaphore is taken before something is recorded and given back after it. */
  void expectRecordedBetween(const std::string& semaphore, const Sizes& expected,
                             const std::function<void()>& record) {
    Sizes before;
    Sizes after;
    Platform::once(semaphore + ".take(", [&] { before = sizes(); });
    Platform::once(semaphore + ".give(", [&] { after = sizes(); });
    record();
    EXPECT_EQ(before, (Sizes{0, 0, 0}));
    EXPECT_EQ(after, expected);
  }
};

TEST_F(ARecording, OfAService_IsDoneWhileTheSemaphoreIsHeld) {
  expectRecordedBetween("svcMapSem", {2, 0, 0}, [this] {
    sut->addService(nullptr, nullptr, nullptr, nullptr, "FooIfc BarIfc");
  });
}

TEST_F(ARecording, OfALegacyService_IsDoneWhileTheSemaphoreIsHeld) {
  expectRecordedBetween("svcMapSem", {2, 0, 0},
                        [this] { sut->addService(nullptr, nullptr, "FooIfc BarIfc"); });
}

TEST_F(ARecording, OfAProxy_IsDoneWhileTheSemaphoreIsHeld) {
  expectRecordedBetween("proxyMapSem", {0, 1, 0},
                        [this] { addProxy(nullptr, nullptr, nullptr, nullptr, "FooIfc"); });
}

TEST_F(ARecording, OfAnInvoker_IsDoneWhileTheSemaphoreIsHeld) {
  expectRecordedBetween("invokerMapSem", {0, 0, 1},
                        [this] { addInvoker(nullptr, nullptr, "FooIfc", "tcp"); });
}

/** One proxy with its library, whose removal others may see at any moment. */
class TheRemovalOfAProxy : public RepositoryTest {
 protected:
  void record() { sut->proxyMap.insert({"FooIfc", SvcProxyData{proxy, dll, nullptr, nullptr}}); }

  void remove() {
    std::string ifc = "FooIfc";
    sut->deleteOneServiceProxy(proxy, ifc);
  }

  /** How many proxies are recorded when a call is made in the removal. */
  std::size_t recordedAt(const std::string& call) {
    std::size_t recorded = 99;
    Platform::once(call, [&] { recorded = sut->proxyMap.size(); });
    remove();
    return recorded;
  }

  Proxy* proxy = newProxy();
  Dll* dll = newDll();
};

TEST_F(TheRemovalOfAProxy, WhileItWaitsForTheSemaphore_HasLookedForNothing) {
  Platform::once("proxyMapSem.take(", [this] { record(); });
  remove();
  EXPECT_TRUE(sut->proxyMap.empty());
  EXPECT_FALSE(fakes::Objects::isAlive(proxy));
}

TEST_F(TheRemovalOfAProxy, ErasesTheEntryAfterTheObjects) {
  record();
  EXPECT_EQ(recordedAt("~Dll#1"), 1u);
}

TEST_F(TheRemovalOfAProxy, SaysThatItIsDoneAfterTheEntryIsErased) {
  record();
  EXPECT_EQ(recordedAt("log(\"Service Config\", \"src/ServiceRepository\", 5, "
                       "\"deleteOneServiceProxy: Proxy found and deleted"),
            0u);
}

}  // namespace
}  // namespace zerva::conformance
