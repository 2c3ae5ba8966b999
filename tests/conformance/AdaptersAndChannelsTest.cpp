#include <stdexcept>

#include "FrameworkException.h"
#include "framework/Dll.h"
#include "framework/ProxyRequestImpl.h"
#include "framework/ServiceExecutor.h"
#include "framework/ServiceThreadPool.h"
#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

class FindingAnAdapter : public ConfiguratorTest {};

TEST_F(FindingAnAdapter, AsksTheProtocolRepository) {
  std::string protocol = "zerva_simple_rmi";
  EXPECT_EQ(sut->framework().findProtocolAdapter(protocol), &adapter);
  expectTrace({"protocols.findProtocolAdapter(\"zerva_simple_rmi\")"});
}

TEST_F(FindingAnAdapter, AsksEveryTime) {
  std::string protocol = "zerva_simple_rmi";
  sut->findProtocolAdapter(protocol);
  sut->findProtocolAdapter(protocol);
  expectTrace({"protocols.findProtocolAdapter(\"zerva_simple_rmi\")",
               "protocols.findProtocolAdapter(\"zerva_simple_rmi\")"});
}

TEST_F(FindingAnAdapter, OfAnUnknownProtocol_GivesNull) {
  std::string protocol = "tcp";
  EXPECT_EQ(sut->findProtocolAdapter(protocol), nullptr);
  EXPECT_EQ(protocol, "tcp");
}

TEST_F(FindingAnAdapter, WithoutAProtocolRepository_ThrowsEachTime) {
  for (auto& bare : {make<OpenConfigurator>(&channel, &repository),
                     make<OpenConfigurator>(&channel, &repository, &interceptors)}) {
    for (int i = 0; i < 2; ++i) {
      std::string protocol = "zerva_simple_rmi";
      try {
        bare->framework().findProtocolAdapter(protocol);
        ADD_FAILURE() << "nothing was thrown";
      } catch (FrameworkException& exception) {
        EXPECT_STREQ(exception.what(),
                     "Attempt to find protocol adapter from uninitiliased Protocol Repository");
      }
      // The exception is all that tells of it.
      expectTrace({});
    }
  }
}

class FindingARealService : public ConfiguratorTest {};

TEST_F(FindingARealService, GivesItInitialised) {
  Service* service = recordService("FooIfc", "fooChannel");
  EXPECT_EQ(sut->framework().findRealService("FooIfc", ""), service);
  expectTrace({"repository.findService(\"FooIfc\", \"\")", "repository.getServiceData(Service#1)",
               "ServiceExecutor#1.initService()"});
}

TEST_F(FindingARealService, ByChannel_HandsTheChannelOn) {
  Service* service = recordService("FooIfc", "fooChannel");
  EXPECT_EQ(sut->findRealService("FooIfc", "fooChannel"), service);
  expectTrace({"repository.findService(\"FooIfc\", \"fooChannel\")",
               "repository.getServiceData(Service#1)", "ServiceExecutor#1.initService()"});
}

TEST_F(FindingARealService, OnAnotherChannel_GivesNull) {
  recordService("FooIfc", "fooChannel");
  EXPECT_EQ(sut->findRealService("FooIfc", "another"), nullptr);
  expectTrace({"repository.findService(\"FooIfc\", \"another\")"});
}

TEST_F(FindingARealService, OfAnUnknownInterface_GivesNullAndInitialisesNothing) {
  recordService("FooIfc", "fooChannel");
  EXPECT_EQ(sut->findRealService("BarIfc", ""), nullptr);
  expectTrace({"repository.findService(\"BarIfc\", \"\")"});
}

TEST_F(FindingARealService, ThatIsALegacyOne_InitialisesNothing) {
  Service* service = recordLegacyService("OldIfc");
  EXPECT_EQ(sut->findRealService("OldIfc", ""), service);
  expectTrace({"repository.findService(\"OldIfc\", \"\")", "repository.getServiceData(Service#1)"});
}

// The record of a service is that of its first name in their order, whichever it was found under.
TEST_F(FindingARealService, UnderTwoNamesWithDifferentExecutors_InitialisesTheFirstNames) {
  auto* service = new fakes::RecordingService;
  for (const char* ifc : {"ZooIfc", "AppleIfc"}) {
    auto* own = new CommsChannel(ifc, nullptr);
    auto* executor =
        new ServiceExecutor(service, own, ifc, &sut->framework(), sut->threadPool, nullptr, true);
    inner.addService(service, executor, own, nullptr, ifc);
  }
  forget();
  EXPECT_EQ(sut->findRealService("ZooIfc", "ZooIfc"), service);
  expectTrace({"repository.findService(\"ZooIfc\", \"ZooIfc\")",
               "repository.getServiceData(Service#1)", "ServiceExecutor#2.initService()"});
}

/** A repository of the host's own that keeps no records of services. */
class WithoutRecords : public fakes::RecordingRepository {
 public:
  using RecordingRepository::RecordingRepository;
  SvcData* getServiceData(Service* /*service*/) override { return nullptr; }
};

TEST_F(FindingARealService, WhoseRecordIsMissing_GivesTheServiceAlone) {
  Service* service = recordService("FooIfc", "fooChannel");
  WithoutRecords other(inner);
  const auto another = make<OpenConfigurator>(&channel, &other);
  EXPECT_EQ(another->findRealService("FooIfc", ""), service);
  expectTrace({"repository.findService(\"FooIfc\", \"\")"});
}

/** A repository of the host's own that makes use of getting its text by reference. */
class Overwriting : public fakes::RecordingRepository {
 public:
  using RecordingRepository::RecordingRepository;
  Service* findService(std::string& interfaceName, const std::string& channelName) override {
    Service* service = RecordingRepository::findService(interfaceName, channelName);
    interfaceName = "overwritten";
    return service;
  }
};

TEST_F(FindingARealService, InARepositoryThatOverwritesItsText_LeavesTheCallersAlone) {
  Service* service = recordService("FooIfc", "fooChannel");
  Overwriting other(inner);
  const auto another = make<OpenConfigurator>(&channel, &other);
  std::string ifc = "FooIfc";
  EXPECT_EQ(another->findRealService(ifc, "fooChannel"), service);
  EXPECT_EQ(ifc, "FooIfc");
}

TEST_F(FindingARealService, HoldsNoSemaphoreWhileItInitialises) {
  recordService("FooIfc", "fooChannel");
  std::vector<std::string> held{"not asked"};
  Platform::once("ServiceExecutor#1.initService(",
                 [&held] { held = fakes::SemaphoreTable::held(); });
  sut->findRealService("FooIfc", "");
  EXPECT_THAT(held, testing::IsEmpty());
}

/** A configurator that overrides nothing. */
class FindingAChannel : public ConfiguratorTest {
 protected:
  std::unique_ptr<OpenConfigurator> plain = make<OpenConfigurator>(&channel, &repository);
};

TEST_F(FindingAChannel, OfAService_GivesTheNameOfItsChannel) {
  Service* service = recordService("FooIfc", "fooChannel");
  EXPECT_EQ(plain->framework().findChannel(service), "fooChannel");
  expectTrace({"repository.findSvcChannel(Service#1)"});
}

TEST_F(FindingAChannel, OfALegacyService_GivesAnEmptyName) {
  Service* service = recordLegacyService("OldIfc");
  EXPECT_EQ(plain->findChannel(service), "");
  expectTrace({"repository.findSvcChannel(Service#1)"});
}

TEST_F(FindingAChannel, OfAnUnknownService_GivesAnEmptyName) {
  fakes::RecordingService service;
  EXPECT_EQ(plain->findChannel(&service), "");
  expectTrace({"repository.findSvcChannel(Service#1)"});
}

TEST_F(FindingAChannel, OfNull_AsksForNull) {
  EXPECT_EQ(plain->findChannel(nullptr), "");
  expectTrace({"repository.findSvcChannel(null)"});
}

TEST_F(FindingAChannel, OfAProxy_AsksForNull) {
  fakes::RecordingProxy proxy;
  EXPECT_EQ(plain->findChannel(&proxy), "");
  expectTrace({"repository.findSvcChannel(null)"});
}

TEST_F(FindingAChannel, OfNullWhileANullServiceIsRecorded_GivesItsChannel) {
  CommsChannel own("fooChannel", nullptr);
  inner.addService(nullptr, nullptr, &own, nullptr, "NullIfc");
  EXPECT_EQ(plain->findChannel(nullptr), "fooChannel");
  plain->serviceRepository->deleteAllServices();
}

class FindingAProxyByChannel : public ConfiguratorTest {};

TEST_F(FindingAProxyByChannel, IsTheLongerFormWithAnEmptyQualifierCalledVirtually) {
  fakes::RecordingProxy proxy;
  sut->proxy = &proxy;
  std::string ifc = "FooIfc";
  std::string svcChannel = "/svc/a";
  EXPECT_EQ(static_cast<SvcRTEContext&>(*sut).findProxy(ifc, svcChannel), &proxy);
  expectTrace({"configurator.findProxy(\"FooIfc\", \"/svc/a\", \"\")"});
}

TEST_F(FindingAProxyByChannel, ThroughTheFrameworksSide_IsTheSame) {
  fakes::RecordingProxy proxy;
  sut->proxy = &proxy;
  std::string ifc = "FooIfc";
  std::string svcChannel = "/svc/a";
  EXPECT_EQ(sut->framework().findProxy(ifc, svcChannel), &proxy);
  expectTrace({"configurator.findProxy(\"FooIfc\", \"/svc/a\", \"\")"});
}

TEST_F(FindingAProxyByChannel, OfAnEmptyChannel_HandsItOn) {
  sut->proxy = nullptr;
  std::string ifc = "FooIfc";
  std::string svcChannel;
  EXPECT_EQ(sut->findProxy(ifc, svcChannel), nullptr);
  expectTrace({"configurator.findProxy(\"FooIfc\", \"\", \"\")"});
}

class RemovingAProxy : public ConfiguratorTest {};

TEST_F(RemovingAProxy, DeletesItWhileNoProxyCanBeMade) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "");
  std::string ifc = "FooIfc";
  static_cast<SvcRTEContext&>(*sut).removeAndDeleteProxyFromRepository(proxy, ifc);
  expectTrace({locked("proxySem", {"repository.deleteOneServiceProxy(Proxy#1, \"FooIfc\")"})});
  EXPECT_EQ(inner.findServiceProxy(ifc), nullptr);
}

TEST_F(RemovingAProxy, ThroughTheFrameworksSide_IsTheSame) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "");
  std::string ifc = "FooIfc";
  sut->framework().removeAndDeleteProxyFromRepository(proxy, ifc);
  expectTrace({locked("proxySem", {"repository.deleteOneServiceProxy(Proxy#1, \"FooIfc\")"})});
}

TEST_F(RemovingAProxy, HoldsTheRepositorysSemaphoreInsideItsOwn) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "");
  std::string ifc = "FooIfc";
  sut->removeAndDeleteProxyFromRepository(proxy, ifc);
  EXPECT_THAT(Trace::lines(1), testing::Contains("~Proxy#1 [proxySem, proxyMapSem]"));
}

TEST_F(RemovingAProxy, OfAnotherInterface_DeletesNothing) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "");
  std::string ifc = "BarIfc";
  sut->removeAndDeleteProxyFromRepository(proxy, ifc);
  EXPECT_THAT(Trace::lines(1), testing::Contains(logLine("src/ServiceRepository", 2,
                                                         "deleteOneServiceProxy: Proxy not found") +
                                                 " [proxySem, proxyMapSem]"));
  expectTrace({locked("proxySem", {"repository.deleteOneServiceProxy(Proxy#1, \"BarIfc\")"})});
  EXPECT_TRUE(fakes::Objects::isAlive(proxy));
}

TEST_F(RemovingAProxy, ThatThrows_LeavesTheSemaphoreFree) {
  Proxy* proxy = recordProxy("FooIfc", "/svc/a", "");
  std::string ifc = "FooIfc";
  Platform::once("repository.deleteOneServiceProxy(", [] { throw std::runtime_error("in use"); });
  const auto remove = [&] { sut->removeAndDeleteProxyFromRepository(proxy, ifc); };
  EXPECT_EQ(messageOf<std::runtime_error>(remove), "in use");
  EXPECT_THAT(fakes::SemaphoreTable::held(), testing::IsEmpty());
  remove();
  EXPECT_EQ(inner.findServiceProxy(ifc), nullptr);
}

}  // namespace
}  // namespace zerva::conformance
