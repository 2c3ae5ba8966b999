// What the repository does with its maps happens between the taking and the giving back of their
// semaphores: another thread's change while this one waits is seen, and one afterwards is not.

#include <algorithm>
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

/** A tear-down of one kind, and the object that ends last where two of each kind are recorded. */
struct Teardown {
  const char* name;
  void (ServiceRepository::*operation)();
  const char* semaphore;
  /** What is done last to the first two objects that were made. */
  const char* last;
  bool erases;
};

class ATeardown : public RepositoryTest, public testing::WithParamInterface<Teardown> {
 protected:
  ~ATeardown() override { deleteAll(); }

  /** One more entry in each map. */
  void record(const std::string& name) {
    auto* const service = newService();
    auto* const channel = newChannel("c");
    sut->svcMap.insert({name, SvcData{service, newExecutor(service, channel), channel, newDll()}});
    sut->proxyMap.insert({name, SvcProxyData{newProxy(), newDll(), nullptr, nullptr}});
    sut->invokerMap.insert({name, SvcInvokerData{newInvoker(), newDll()}});
  }

  void tearDown() { (*sut.*GetParam().operation)(); }

  void deleteAll() {
    sut->deleteAllServices();
    sut->deleteAllServiceProxies();
    sut->deleteAllServiceInvokers();
  }

  /** How many entries the map of this semaphore has. */
  std::size_t entries() const {
    const std::string semaphore = GetParam().semaphore;
    if (semaphore == "svcMapSem") return sut->svcMap.size();
    return semaphore == "proxyMapSem" ? sut->proxyMap.size() : sut->invokerMap.size();
  }

  /** How many entries there are when a call is made in the tear-down; 99 without such a call. */
  std::size_t entriesAt(const std::string& call) {
    std::size_t number = 99;
    Platform::once(call, [&] { number = entries(); });
    tearDown();
    return number;
  }

  static std::ptrdiff_t timesOfTheLast() {
    const Lines lines = Trace::lines();
    return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
      return line.rfind(GetParam().last, 0) == 0;
    });
  }
};

TEST_P(ATeardown, WhileItWaitsForTheSemaphore_HasLookedAtNothing) {
  Platform::once(GetParam().semaphore + std::string(".take("), [this] {
    record("B");
    record("A");
  });
  tearDown();
  EXPECT_EQ(timesOfTheLast(), 1);
  EXPECT_EQ(entries(), GetParam().erases ? 0u : 2u);
}

TEST_P(ATeardown, WhenItGivesTheSemaphoreBack_HasDoneAll) {
  record("B");
  record("A");
  std::ptrdiff_t times = 0;
  Platform::once(GetParam().semaphore + std::string(".give("),
                 [&times] { times = timesOfTheLast(); });
  EXPECT_EQ(entriesAt(GetParam().semaphore + std::string(".give(")), GetParam().erases ? 0u : 2u);
  EXPECT_EQ(times, 1);
}

// What looks at the map from an object's end sees all of it.
TEST_P(ATeardown, AtTheLastObject_StillHasAllEntries) {
  record("B");
  record("A");
  EXPECT_EQ(entriesAt(GetParam().last), 2u);
}

INSTANTIATE_TEST_SUITE_P(
    OfEachKind, ATeardown,
    testing::Values(Teardown{"ShuttingServicesDown", &ServiceRepository::shutdownAllServices,
                             "svcMapSem", "Service#1.stop(", false},
                    Teardown{"DeletingServices", &ServiceRepository::deleteAllServices, "svcMapSem",
                             "~Dll#1", true},
                    Teardown{"DeletingProxies", &ServiceRepository::deleteAllServiceProxies,
                             "proxyMapSem", "~Dll#2", true},
                    Teardown{"DeletingInvokers", &ServiceRepository::deleteAllServiceInvokers,
                             "invokerMapSem", "~Dll#3", true}),
    [](const auto& parameter) { return parameter.param.name; });

}  // namespace
}  // namespace zerva::conformance
