#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

/** A configurator on a repository without a recorder between them, as a host has it. */
class AHost : public HostTest {
 protected:
  AHost() {
    offerInvoker("libServiceRegistry.so", "createServiceRegistryInvoker");
    offerService("libfoo.so", "createFoo");
    offerService("libold.so", "createOld");
    offerProxy("libproxy.so", "createProxy");
    Platform::reply("find_proxy:BarIfc", "found_proxy:libproxy.so,createProxy");
    sut = makeRecorded<OpenConfigurator>(&channel, &inner, &protocols, &interceptors,
                                         &invokeInterceptors);
  }

  std::unique_ptr<OpenConfigurator> sut;
};

TEST_F(AHost, ThatDeletesItsConfigurator_SeesEverythingGoInOrder) {
  sut->createServiceExecutor("libfoo.so", "createFoo", "fooChannel", "FooIfc AdminIfc", true);
  sut->createService("libold.so", "createOld", "OldIfc");
  std::string ifc = "BarIfc";
  std::string svcChannel = "/svc/bar";
  sut->framework().findProxy(ifc, svcChannel);
  forget();
  sut.reset();
  expectTrace(
      {"FwkTimer#1.shutdown()",
       locked("svcMapSem", {"ServiceExecutor#1.shutdown()", "Service#1.stop()",
                            "ServiceExecutor#1.shutdown()", "Service#1.stop()"}),
       locked("svcMapSem",
              {"~ServiceExecutor#1", "Service#1.waitForThreadCompletion()", "~Service#1", "~Dll#2",
               "Service#2.waitForThreadCompletion()", "~Service#2", "~Dll#3"}),
       locked("proxyMapSem", {"~Proxy#1", "~ProxyRequestImpl#1", "~CommsChannel#2", "~Dll#4"}),
       locked("invokerMapSem", {"~Invoker#1", "~Dll#1"}), "~ServiceThreadPool#1", "~FwkTimer#1",
       "~proxySem", "~invokerSem", "~registrySem"});
}

TEST_F(AHost, WhoseServiceLooksOthersUpInItsInit_GetsThemWithoutALock) {
  Proxy* found = nullptr;
  Platform::once("Service#1.init(", [&] {
    EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
    std::string ifc = "BarIfc";
    std::string svcChannel = "/svc/bar";
    found = sut->framework().findProxy(ifc, svcChannel);
  });
  sut->createServiceExecutor("libfoo.so", "createFoo", "fooChannel", "FooIfc", true);
  EXPECT_NE(found, nullptr);
}

TEST_F(AHost, ThatIsShutDown_CanStillFindWhatIsThere) {
  Service* service =
      sut->createServiceExecutor("libfoo.so", "createFoo", "fooChannel", "FooIfc", true);
  sut->shutdown();
  EXPECT_EQ(sut->findRealService("FooIfc", "fooChannel"), service);
  EXPECT_EQ(sut->findChannel(service), "fooChannel");
}

}  // namespace
}  // namespace zerva::conformance
