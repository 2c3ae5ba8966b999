#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {
namespace {

class DeletingProxies : public RepositoryTest {};

TEST_F(DeletingProxies, DeletesProxyRequestChannelAndLibrary) {
  addProxy(newProxy(), newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace(
      {locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1", "~CommsChannel#1", "~Dll#1"})});
  EXPECT_TRUE(sut->proxyMap.empty());
  EXPECT_EQ(findProxy("FooIfc"), nullptr);
}

TEST_F(DeletingProxies, GoesInTheOrderOfTheNamesAndOfAdding) {
  for (const char* name : {"B", "A", "B"}) addProxy(newProxy(), newDll(), nullptr, nullptr, name);
  forget();
  sut->deleteAllServiceProxies();
  expectTrace(
      {locked("proxyMapSem", {"~Proxy#2", "~Dll#2", "~Proxy#1", "~Dll#1", "~Proxy#3", "~Dll#3"})});
}

TEST_F(DeletingProxies, RecordedTwice_DeletesEachObjectOnce) {
  Proxy* proxy = newProxy();
  Dll* dll = newDll();
  CommsChannel* channel = newChannel("p");
  ProxyRequest* request = newRequest("s", "");
  addProxy(proxy, dll, channel, request, "FooIfc");
  addProxy(proxy, dll, channel, request, "BarIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace(
      {locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1", "~CommsChannel#1", "~Dll#1"})});
}

TEST_F(DeletingProxies, LeavesARepositoryThatCanBeFilledAgain) {
  addProxy(newProxy(), newDll(), nullptr, nullptr, "FooIfc");
  sut->deleteAllServiceProxies();
  Proxy* proxy = newProxy();
  addProxy(proxy, newDll(), nullptr, nullptr, "FooIfc");
  EXPECT_EQ(findProxy("FooIfc"), proxy);
  sut->deleteAllServiceProxies();
}

TEST_F(DeletingProxies, WithoutAnything_DeletesNothing) {
  addProxy(nullptr, nullptr, nullptr, nullptr, "FooIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace({locked("proxyMapSem", {})});
  EXPECT_TRUE(sut->proxyMap.empty());
}

TEST_F(DeletingProxies, LeavesServicesAndInvokersAlone) {
  sut->addService(newService(), newDll(), "FooIfc");
  addInvoker(newInvoker(), newDll(), "FooIfc", "tcp");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace({locked("proxyMapSem", {})});
  EXPECT_EQ(sut->svcMap.size(), 1u);
  EXPECT_EQ(sut->invokerMap.size(), 1u);
  sut->deleteAllServices();
  sut->deleteAllServiceInvokers();
}

/** The parts of a proxy's record, of which each may be missing or shared. */
struct ProxyParts {
  Proxy* proxy;
  Dll* dll;
  CommsChannel* channel;
  ProxyRequest* request;
};

/** One of the parts, by its name in the trace without its number. */
class APartOfAProxy : public RepositoryTest, public testing::WithParamInterface<const char*> {
 protected:
  static bool isThis(const std::string& part) { return part == GetParam(); }

  static ProxyParts newParts(const char* name) {
    return {newProxy(), newDll(), newChannel(name), newRequest(name, "")};
  }

  void add(const ProxyParts& parts, const std::string& ifc) {
    addProxy(parts.proxy, parts.dll, parts.channel, parts.request, ifc);
  }

  /** All parts but this one. */
  static ProxyParts partsWithout() {
    return {isThis("Proxy") ? nullptr : newProxy(), isThis("Dll") ? nullptr : newDll(),
            isThis("CommsChannel") ? nullptr : newChannel("p"),
            isThis("ProxyRequestImpl") ? nullptr : newRequest("s", "")};
  }

  /** The ends of the parts in their order; those of the second without this one if it is shared. */
  static Lines ends(const std::string& number, bool withThis) {
    Lines lines;
    for (const char* part : {"Proxy", "ProxyRequestImpl", "CommsChannel", "Dll"}) {
      if (withThis || !isThis(part)) lines.push_back(std::string("~") + part + "#" + number);
    }
    return lines;
  }
};

TEST_P(APartOfAProxy, InDifferentEntries_IsDeletedAtItsFirst) {
  const ProxyParts first = newParts("a");
  ProxyParts second = first;
  // The second has parts of its own but for this one.
  if (!isThis("Proxy")) second.proxy = newProxy();
  if (!isThis("Dll")) second.dll = newDll();
  if (!isThis("CommsChannel")) second.channel = newChannel("b");
  if (!isThis("ProxyRequestImpl")) second.request = newRequest("b", "");
  add(first, "A");
  add(second, "B");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace({locked("proxyMapSem", {asText(ends("1", true)), asText(ends("2", false))})});
}

TEST_P(APartOfAProxy, ThatIsMissing_IsPassedOverByDeletingAll) {
  add(partsWithout(), "FooIfc");
  forget();
  sut->deleteAllServiceProxies();
  expectTrace({locked("proxyMapSem", ends("1", false))});
}

TEST_P(APartOfAProxy, ThatIsMissing_IsPassedOverByDeletingOne) {
  logLevel(0);
  const ProxyParts parts = partsWithout();
  add(parts, "FooIfc");
  forget();
  std::string ifc = "FooIfc";
  sut->deleteOneServiceProxy(parts.proxy, ifc);
  const std::string question = "loggingOn(\"Service Config\", 5) -> false";
  Lines inside = ends("1", false);
  inside.push_back(question);
  expectTrace({question, locked("proxyMapSem", inside)});
  EXPECT_TRUE(sut->proxyMap.empty());
}

INSTANTIATE_TEST_SUITE_P(Each, APartOfAProxy,
                         testing::Values("Proxy", "ProxyRequestImpl", "CommsChannel", "Dll"));

/** At level 5 the steps are seen, at 4 only the failure. */
class DeletingOneProxy : public RepositoryTest, public testing::WithParamInterface<int> {
 protected:
  DeletingOneProxy() {
    logLevel(GetParam());
    proxy = newProxy();
    addProxy(proxy, newDll(), newChannel("p"), newRequest("s", ""), "FooIfc");
    forget();
  }

  void deleteOne(Proxy* which, std::string interfaceName) {
    sut->deleteOneServiceProxy(which, interfaceName);
  }

  static std::string found() {
    return progress(
        "deleteOneServiceProxy: Proxy found and deleted together with channel, Req and DLL");
  }
  static std::string notFound() { return error("deleteOneServiceProxy: Proxy not found"); }
  static std::string toRemove(const std::string& name) {
    return progress("proxyToRemove: %p", Object{name});
  }

  Proxy* proxy;
};

TEST_P(DeletingOneProxy, DeletesAllItsPartsAndForgetsThem) {
  deleteOne(proxy, "FooIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1",
                                                           "~CommsChannel#1", "~Dll#1", found()})});
  EXPECT_TRUE(sut->proxyMap.empty());
}

TEST_P(DeletingOneProxy, OfAnotherName_DeletesNothingAndSaysSo) {
  deleteOne(proxy, "BarIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {notFound()})});
  EXPECT_EQ(findProxy("FooIfc"), proxy);
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, ThatIsNotRecorded_DeletesNothingAndSaysSo) {
  auto* stranger = keep(newProxy());
  deleteOne(stranger, "FooIfc");
  expectTrace({toRemove("Proxy#2"), locked("proxyMapSem", {notFound()})});
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, ThatIsNull_DeletesNothingAndSaysSo) {
  deleteOne(nullptr, "FooIfc");
  expectTrace({toRemove("null"), locked("proxyMapSem", {notFound()})});
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, ThatIsARecordedNull_DeletesWhatBelongsToIt) {
  addProxy(nullptr, newDll(), newChannel("q"), newRequest("t", ""), "FooIfc");
  forget();
  deleteOne(nullptr, "FooIfc");
  expectTrace({toRemove("null"), locked("proxyMapSem", {"~ProxyRequestImpl#2", "~CommsChannel#2",
                                                        "~Dll#2", found()})});
  EXPECT_EQ(findProxy("FooIfc"), proxy);
  sut->deleteAllServiceProxies();
}

TEST_P(DeletingOneProxy, RecordedUnderTwoNames_TakesTheEntryOfTheName) {
  addProxy(proxy, nullptr, nullptr, nullptr, "BarIfc");
  forget();
  deleteOne(proxy, "FooIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1",
                                                           "~CommsChannel#1", "~Dll#1", found()})});
  ASSERT_EQ(sut->proxyMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.begin()->first, "BarIfc");
}

TEST_P(DeletingOneProxy, RecordedTwiceUnderAName_TakesTheFirstEntryOnly) {
  addProxy(proxy, nullptr, nullptr, nullptr, "FooIfc");
  forget();
  deleteOne(proxy, "FooIfc");
  expectTrace({toRemove("Proxy#1"), locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1",
                                                           "~CommsChannel#1", "~Dll#1", found()})});
  ASSERT_EQ(sut->proxyMap.size(), 1u);
  EXPECT_EQ(sut->proxyMap.begin()->second.dll, nullptr);
}

TEST_P(DeletingOneProxy, LeavesTheOtherProxiesOfTheName) {
  auto* other = newProxy();
  addProxy(other, newDll(), newChannel("q"), newRequest("t", ""), "FooIfc");
  deleteOne(proxy, "FooIfc");
  EXPECT_EQ(findProxy("FooIfc"), other);
  sut->deleteAllServiceProxies();
}

INSTANTIATE_TEST_SUITE_P(AtLevel, DeletingOneProxy, testing::Values(4, 5));

}  // namespace
}  // namespace zerva::conformance
