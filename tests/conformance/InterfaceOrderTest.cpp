// The order of virtual operations and of fields is what libraries of any age are built against.

#include <cstddef>
#include <cstring>

#include "AbstractServiceRepository.h"
#include "FrameworkContext.h"
#include "SvcInvokerData.h"
#include "SvcProxyData.h"
#include "SvcRTEContext.h"
#include "framework/Service.h"
#include "framework/ServiceRegistryIfc.h"
#include "tests/conformance/ConformanceTest.h"
#include "tests/conformance/RepositoryTest.h"

namespace zerva::conformance {
namespace {

/** @returns at which place of its class's table a virtual operation stands, from 0 on. */
template <class Operation>
std::ptrdiff_t slotOf(Operation operation) {
  // The platform's binary interface: 1 more than the offset in the table.
  static_assert(sizeof operation == 2 * sizeof(std::ptrdiff_t));
  std::ptrdiff_t offset = 0;
  std::memcpy(&offset, &operation, sizeof offset);
  return (offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(TheContextOfServices, HasItsOperationsInOrder) {
  using Context = SvcRTEContext;
  EXPECT_EQ(slotOf<Executable* (Context::*)(std::string&)>(&Context::findExecutable), 0);
  EXPECT_EQ((slotOf<Proxy* (Context::*)(std::string&, std::string&)>(&Context::findProxy)), 1);
  EXPECT_EQ(slotOf<Executable* (Context::*)(const std::string&)>(&Context::findService), 2);
  EXPECT_EQ((slotOf<int (Context::*)(Executable*, int)>(&Context::createTimer)), 3);
  EXPECT_EQ(slotOf<bool (Context::*)(int)>(&Context::startTimer), 4);
  EXPECT_EQ(slotOf<bool (Context::*)(int)>(&Context::stopTimer), 5);
  EXPECT_EQ(slotOf<bool (Context::*)(int)>(&Context::resetTimer), 6);
  EXPECT_EQ(slotOf<bool (Context::*)(int)>(&Context::deleteTimer), 7);
  EXPECT_EQ(slotOf<bool (Context::*)(int)>(&Context::timerRunning), 8);
  EXPECT_EQ(slotOf<void (Context::*)()>(&Context::shutdown), 9);
  EXPECT_EQ((slotOf<void (Context::*)(Proxy*, std::string&)>(
                &Context::removeAndDeleteProxyFromRepository)),
            10);
  EXPECT_TRUE(std::has_virtual_destructor_v<Context>);
}

TEST(TheContextOfTheFramework, HasItsOperationsInOrder) {
  using Context = FrameworkContext;
  using Text = std::string&;
  using ConstText = const std::string&;
  EXPECT_EQ((slotOf<Invoker* (Context::*)(Text, Text)>(&Context::findInvoker)), 0);
  EXPECT_EQ((slotOf<Proxy* (Context::*)(Text, Text)>(&Context::findProxy)), 1);
  EXPECT_EQ((slotOf<Proxy* (Context::*)(Text, Text, Text)>(&Context::findProxy)), 2);
  EXPECT_EQ(slotOf<void (Context::*)(Proxy*)>(&Context::deleteProxy), 3);
  EXPECT_EQ(slotOf<std::string (Context::*)(Executable*)>(&Context::findChannel), 4);
  EXPECT_EQ(
      (slotOf<Service* (Context::*)(ServiceExecutor*, std::string, std::string, CommsChannelIfc*,
                                    std::string)>(&Context::initialiseService)),
      5);
  EXPECT_EQ(slotOf<ProtocolAdapter* (Context::*)(Text)>(&Context::findProtocolAdapter), 6);
  EXPECT_EQ((slotOf<void (Context::*)(Proxy*, Text)>(&Context::removeAndDeleteProxyFromRepository)),
            7);
  EXPECT_EQ((slotOf<Service* (Context::*)(ConstText, ConstText)>(&Context::findRealService)), 8);
  EXPECT_FALSE(std::has_virtual_destructor_v<Context>);
}

TEST(TheRepositorysInterface, HasItsOperationsInOrder) {
  using Repository = AbstractServiceRepository;
  using Text = std::string&;
  EXPECT_EQ((slotOf<void (Repository::*)(Service*, Dll*, std::string)>(&Repository::addService)),
            0);
  EXPECT_EQ((slotOf<void (Repository::*)(Service*, ServiceExecutor*, CommsChannelIfc*, Dll*,
                                         std::string)>(&Repository::addService)),
            1);
  EXPECT_EQ((slotOf<void (Repository::*)(Proxy*, Dll*, CommsChannelIfc*, ProxyRequest*, Text)>(
                &Repository::addServiceProxy)),
            2);
  EXPECT_EQ(
      (slotOf<void (Repository::*)(Invoker*, Dll*, Text, Text)>(&Repository::addServiceInvoker)),
      3);
  EXPECT_EQ((slotOf<Service* (Repository::*)(Text, const std::string&)>(&Repository::findService)),
            4);
  EXPECT_EQ(slotOf<Proxy* (Repository::*)(Text)>(&Repository::findServiceProxy), 5);
  EXPECT_EQ((slotOf<Proxy* (Repository::*)(Text, Text, Text)>(&Repository::findServiceProxy)), 6);
  EXPECT_EQ((slotOf<Invoker* (Repository::*)(Text, Text)>(&Repository::findServiceInvoker)), 7);
  EXPECT_EQ(slotOf<std::string (Repository::*)(Service*)>(&Repository::findSvcChannel), 8);
  EXPECT_EQ(slotOf<bool (Repository::*)(Service*)>(&Repository::containsService), 9);
  EXPECT_EQ(slotOf<SvcData* (Repository::*)(Service*)>(&Repository::getServiceData), 10);
  EXPECT_EQ(slotOf<void (Repository::*)()>(&Repository::shutdownAllServices), 11);
  EXPECT_EQ(slotOf<void (Repository::*)()>(&Repository::deleteAllServices), 12);
  EXPECT_EQ(slotOf<void (Repository::*)()>(&Repository::deleteAllServiceInvokers), 13);
  EXPECT_EQ(slotOf<void (Repository::*)()>(&Repository::deleteAllServiceProxies), 14);
  EXPECT_EQ((slotOf<void (Repository::*)(Proxy*, Text)>(&Repository::deleteOneServiceProxy)), 15);
  EXPECT_TRUE(std::has_virtual_destructor_v<Repository>);
}

TEST(TheInterfacesOfThePlatform, HaveTheOperationsThatCountInOrder) {
  EXPECT_EQ(slotOf<void (Executable::*)(SvcRTEContext*)>(&Executable::init), 0);
  EXPECT_EQ(slotOf<void (Executable::*)()>(&Executable::stop), 1);
  using Text = const std::string&;
  using Registry = ServiceRegistryIfc;
  EXPECT_EQ((slotOf<void (Registry::*)(Text, Text)>(&Registry::registerInterface)), 0);
  EXPECT_EQ((slotOf<void (Registry::*)(Text, Text, Text, Text)>(&Registry::registerProxy)), 2);
  EXPECT_EQ((slotOf<void (Registry::*)(Text, Text, Text, Text)>(&Registry::registerInvoker)), 3);
}

TEST(TheConfigurator, HasItsOperationsWithTheirTypes) {
  using Sut = ServiceConfigurator;
  using Text = const std::string&;
  // What is taken by value and what by reference is part of the interface; this compiles or not.
  const auto createService =
      static_cast<Service* (Sut::*)(std::string, std::string, std::string)>(&Sut::createService);
  const auto createExecutor =
      static_cast<Service* (Sut::*)(Text, Text, Text, Text, bool)>(&Sut::createServiceExecutor);
  const auto createLazy = static_cast<Service* (Sut::*)(Text, Text, Text, Text, bool)>(
      &Sut::createServiceExecutorDelayedInitialisation);
  const auto process = static_cast<void (Sut::*)(std::string)>(&Sut::processDirectives);
  const auto parse = static_cast<std::vector<std::string> (Sut::*)(const char*, int, std::string)>(
      &Sut::parseDirectives);
  const auto format = static_cast<void (Sut::*)(std::string&)>(&Sut::formatString);
  const auto find = static_cast<void (Sut::*)(std::string&, std::string&)>(&Sut::findInRegistry);
  const auto makeProxy =
      static_cast<Proxy* (Sut::*)(std::string&, std::string&, std::string&, std::string&,
                                  std::string&)>(&Sut::initProxyAndAddToRepository);
  EXPECT_TRUE(createService && createExecutor && createLazy && process && parse && format && find &&
              makeProxy);
}

TEST(TheConfigurator, IsAContextOfServicesAndInPrivateOneOfTheFramework) {
  EXPECT_TRUE((std::is_convertible_v<ServiceConfigurator*, SvcRTEContext*>));
  EXPECT_TRUE((std::is_convertible_v<ServiceConfigurator*, Context*>));
  EXPECT_TRUE((std::is_base_of_v<FrameworkContext, ServiceConfigurator>));
  EXPECT_FALSE((std::is_convertible_v<ServiceConfigurator*, FrameworkContext*>));
  EXPECT_TRUE(std::has_virtual_destructor_v<ServiceConfigurator>);
}

class TheFieldsOfAConfigurator : public ConfiguratorTest {};

TEST_F(TheFieldsOfAConfigurator, AreInOrder) {
  const std::vector<const void*> fields{&sut->commsChannel,
                                        &sut->serviceRepository,
                                        &sut->ccInterceptorDispatcher,
                                        &sut->protocolRepository,
                                        &sut->invokeInterceptorDispatcher,
                                        &sut->threadPool,
                                        &sut->timer,
                                        &sut->proxySem,
                                        &sut->invokerSem,
                                        &sut->registrySem,
                                        &sut->registryRequestId};
  EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
}

class TheFieldsOfARepository : public RepositoryTest {};

TEST_F(TheFieldsOfARepository, AreInOrder) {
  const std::vector<const void*> fields{&sut->svcMap,    &sut->proxyMap,    &sut->invokerMap,
                                        &sut->svcMapSem, &sut->proxyMapSem, &sut->invokerMapSem};
  EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end()));
}

TEST(TheRecordsOfARepository, HaveTheirFieldsInOrder) {
  constexpr std::size_t pointer = sizeof(void*);
  EXPECT_EQ(offsetof(SvcData, service), 0 * pointer);
  EXPECT_EQ(offsetof(SvcData, executor), 1 * pointer);
  EXPECT_EQ(offsetof(SvcData, channel), 2 * pointer);
  EXPECT_EQ(offsetof(SvcData, dll), 3 * pointer);
  EXPECT_EQ(offsetof(SvcProxyData, proxy), 0 * pointer);
  EXPECT_EQ(offsetof(SvcProxyData, dll), 1 * pointer);
  EXPECT_EQ(offsetof(SvcProxyData, request), 2 * pointer);
  EXPECT_EQ(offsetof(SvcProxyData, channel), 3 * pointer);
  EXPECT_EQ(offsetof(SvcInvokerData, invoker), 0 * pointer);
  EXPECT_EQ(offsetof(SvcInvokerData, dll), 1 * pointer);
}

}  // namespace
}  // namespace zerva::conformance
