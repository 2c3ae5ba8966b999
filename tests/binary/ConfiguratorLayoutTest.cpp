#include <gmock/gmock.h>

#include <cstdint>
#include <type_traits>

#include "FrameworkException.h"
#include "ServiceConfigurator.h"
#include "ServiceRepository.h"
#include "tests/binary/VirtualTable.h"

namespace {

using testing::ElementsAre;

class OpenConfigurator : public ServiceConfigurator {
 public:
  using ServiceConfigurator::ccInterceptorDispatcher;
  using ServiceConfigurator::commsChannel;
  using ServiceConfigurator::invokeInterceptorDispatcher;
  using ServiceConfigurator::invokerSem;
  using ServiceConfigurator::protocolRepository;
  using ServiceConfigurator::proxySem;
  using ServiceConfigurator::registryRequestId;
  using ServiceConfigurator::registrySem;
  using ServiceConfigurator::ServiceConfigurator;
  using ServiceConfigurator::serviceRepository;
  using ServiceConfigurator::threadPool;
  using ServiceConfigurator::timer;

  using ServiceConfigurator::SVC_REG_INVOKER_CREATORFN;
  using ServiceConfigurator::SVC_REG_INVOKER_INTERFACE;
  using ServiceConfigurator::SVC_REG_INVOKER_LIB;
  using ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL1;
  using ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL2;

  FrameworkContext* framework() { return this; }

  Proxy* findProxy(std::string& ifc, std::string& svcChannel) override {
    calls.push_back("findProxy " + ifc + " " + svcChannel);
    return nullptr;
  }
  using ServiceConfigurator::findProxy;

  void removeAndDeleteProxyFromRepository(Proxy*, std::string& ifc) override {
    calls.push_back("removeAndDeleteProxyFromRepository " + ifc);
  }

  std::vector<std::string> calls;
};

class AConfigurator : public testing::Test {
 protected:
  std::size_t place(const void* field) const {
    return static_cast<std::size_t>(static_cast<const char*>(field) -
                                    reinterpret_cast<const char*>(&sut));
  }

  ServiceRepository repository;
  OpenConfigurator sut{nullptr, &repository};
};

TEST_F(AConfigurator, BeginsAsTheContextOfServices) {
  EXPECT_EQ(place(static_cast<SvcRTEContext*>(&sut)), 0U);
}

TEST_F(AConfigurator, IsTheFrameworksContextNext) {
  EXPECT_EQ(place(sut.framework()), sizeof(void*));
}

TEST_F(AConfigurator, HasItsFieldsInTheirOrder) {
  const std::vector<std::size_t> places = {place(&sut.commsChannel),
                                           place(&sut.serviceRepository),
                                           place(&sut.ccInterceptorDispatcher),
                                           place(&sut.protocolRepository),
                                           place(&sut.invokeInterceptorDispatcher),
                                           place(&sut.threadPool),
                                           place(&sut.timer),
                                           place(&sut.proxySem),
                                           place(&sut.invokerSem),
                                           place(&sut.registrySem),
                                           place(&sut.registryRequestId)};
  std::vector<std::size_t> expected;
  for (std::size_t index = 2; index < 13; ++index) {
    expected.push_back(index * sizeof(void*));
  }
  EXPECT_EQ(places, expected);
}

TEST_F(AConfigurator, HasNothingBehindItsLastField) {
  EXPECT_EQ(sizeof(ServiceConfigurator), 13 * sizeof(void*));
}

TEST_F(AConfigurator, CountsItsRequestsIn32Bits) {
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::registryRequestId), std::uint32_t>));
}

TEST_F(AConfigurator, PointsToTheHostsObjects) {
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::commsChannel), CommsChannelIfc*>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(OpenConfigurator::serviceRepository), AbstractServiceRepository*>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::ccInterceptorDispatcher),
                              CCInterceptorDispatcher*>));
  EXPECT_TRUE((
      std::is_same_v<decltype(OpenConfigurator::protocolRepository), AbstractProtocolRepository*>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::invokeInterceptorDispatcher),
                              InvokeInterceptorDispatcher*>));
}

TEST_F(AConfigurator, PointsToItsOwnObjects) {
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::threadPool), ServiceThreadPool*>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::timer), FwkTimer*>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::proxySem), Semaphore*>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::invokerSem), Semaphore*>));
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::registrySem), Semaphore*>));
}

TEST_F(AConfigurator, HasOneTwoArgumentFindProxyForBothContexts) {
  std::string ifc = "Ifc";
  std::string channel = "channel";

  zerva::callSlot<Proxy*, std::string&, std::string&>(&sut, 1, ifc, channel);
  zerva::callSlot<Proxy*, std::string&, std::string&>(sut.framework(), 1, ifc, channel);

  EXPECT_THAT(sut.calls, ElementsAre("findProxy Ifc channel", "findProxy Ifc channel"));
}

TEST_F(AConfigurator, HasOneRemovalOfProxiesForBothContexts) {
  std::string ifc = "Ifc";

  zerva::callSlot<void, Proxy*, std::string&>(&sut, 10, nullptr, ifc);
  zerva::callSlot<void, Proxy*, std::string&>(sut.framework(), 7, nullptr, ifc);

  EXPECT_THAT(sut.calls, ElementsAre("removeAndDeleteProxyFromRepository Ifc",
                                     "removeAndDeleteProxyFromRepository Ifc"));
}

TEST(TheConfiguratorsClass, GivesTheFrameworksSideToNobodyButItsOwn) {
  EXPECT_TRUE((std::is_base_of_v<FrameworkContext, ServiceConfigurator>));
  EXPECT_FALSE((std::is_convertible_v<ServiceConfigurator*, FrameworkContext*>));
}

TEST(TheConfiguratorsClass, GivesTheServicesSideToEverybody) {
  EXPECT_TRUE((std::is_convertible_v<ServiceConfigurator*, SvcRTEContext*>));
  EXPECT_TRUE((std::is_convertible_v<SvcRTEContext*, Context*>));
}

TEST(TheConfiguratorsConstants, AreTexts) {
  EXPECT_TRUE((std::is_same_v<decltype(OpenConfigurator::SVC_REG_INVOKER_LIB), const std::string>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(OpenConfigurator::SVC_REG_INVOKER_CREATORFN), const std::string>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(OpenConfigurator::SVC_REG_INVOKER_INTERFACE), const std::string>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL1), const std::string>));
  EXPECT_TRUE(
      (std::is_same_v<decltype(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL2), const std::string>));
}

TEST(TheConfiguratorsConstants, NameTheRegistrysInvoker) {
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_LIB, "libServiceRegistry.so");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_CREATORFN, "createServiceRegistryInvoker");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_INTERFACE, "ServiceRegistryIfc");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL1, "zerva_svc_xml");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL2, "zerva_simple_rmi");
}

TEST(TheException, IsTheFrameworksAndDestroyedVirtually) {
  EXPECT_TRUE((std::is_convertible_v<FrameworkException*, ZervaException*>));
  EXPECT_TRUE(std::has_virtual_destructor_v<FrameworkException>);
  EXPECT_TRUE((std::is_constructible_v<FrameworkException, const std::string&>));
  EXPECT_EQ(sizeof(FrameworkException), sizeof(ZervaException));
}

}  // namespace
