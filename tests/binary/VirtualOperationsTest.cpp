// Which operations are called through a table and which are not, and where each table ends. Both
// are compiled into everybody who calls or derives.

#include <cxxabi.h>
#include <gtest/gtest.h>

#include <typeinfo>

#include "FrameworkContext.h"
#include "FrameworkException.h"
#include "ServiceConfigurator.h"
#include "ServiceRepository.h"
#include "SvcRTEContext.h"
#include "tests/binary/MemberPointer.h"

namespace {

using zerva::isVirtual;
using zerva::slotOf;

using Configurator = ServiceConfigurator;
using Repository = ServiceRepository;
using Text = std::string;

TEST(TheConfiguratorsOwnOperations, AreCalledWithoutATable) {
  EXPECT_FALSE(isVirtual(&Configurator::constructorActions));
  EXPECT_FALSE(isVirtual(&Configurator::createSvcRegInvoker));
  EXPECT_FALSE(isVirtual(&Configurator::processDirectives));
  EXPECT_FALSE(isVirtual(&Configurator::parseDirectives));
  EXPECT_FALSE(isVirtual(&Configurator::formatString));
  EXPECT_FALSE(isVirtual(&Configurator::createService));
  EXPECT_FALSE(isVirtual(&Configurator::createServiceExecutor));
  EXPECT_FALSE(isVirtual(&Configurator::createServiceExecutorDelayedInitialisation));
  EXPECT_FALSE(isVirtual(&Configurator::registerInvokerInfo));
  EXPECT_FALSE(isVirtual(&Configurator::registerProxyInfo));
  EXPECT_FALSE(isVirtual(&Configurator::findInRegistry));
  EXPECT_FALSE(isVirtual(&Configurator::initProxyAndAddToRepository));
}

TEST(TheConfiguratorsOperations, OnTheSideOfServicesAreVirtual) {
  EXPECT_TRUE(isVirtual(&Configurator::findExecutable));
  EXPECT_TRUE(isVirtual<Proxy* (Configurator::*)(Text&, Text&)>(&Configurator::findProxy));
  EXPECT_TRUE(isVirtual(&Configurator::findService));
  EXPECT_TRUE(isVirtual(&Configurator::createTimer));
  EXPECT_TRUE(isVirtual(&Configurator::startTimer));
  EXPECT_TRUE(isVirtual(&Configurator::stopTimer));
  EXPECT_TRUE(isVirtual(&Configurator::resetTimer));
  EXPECT_TRUE(isVirtual(&Configurator::deleteTimer));
  EXPECT_TRUE(isVirtual(&Configurator::timerRunning));
  EXPECT_TRUE(isVirtual(&Configurator::shutdown));
  EXPECT_TRUE(isVirtual(&Configurator::removeAndDeleteProxyFromRepository));
  EXPECT_TRUE(std::has_virtual_destructor_v<Configurator>);
}

TEST(TheConfiguratorsOperations, OnTheSideOfTheFrameworkAreVirtual) {
  EXPECT_TRUE(isVirtual(&Configurator::findInvoker));
  EXPECT_TRUE(isVirtual<Proxy* (Configurator::*)(Text&, Text&, Text&)>(&Configurator::findProxy));
  EXPECT_TRUE(isVirtual(&Configurator::findChannel));
  EXPECT_TRUE(isVirtual(&Configurator::initialiseService));
  EXPECT_TRUE(isVirtual(&Configurator::findProtocolAdapter));
  EXPECT_TRUE(isVirtual(&Configurator::findRealService));
}

TEST(TheRepositorysOperations, AreAllVirtual) {
  EXPECT_TRUE(isVirtual<void (Repository::*)(Service*, Dll*, Text)>(&Repository::addService));
  EXPECT_TRUE(
      (isVirtual<void (Repository::*)(Service*, ServiceExecutor*, CommsChannelIfc*, Dll*, Text)>(
          &Repository::addService)));
  EXPECT_TRUE(isVirtual(&Repository::addServiceProxy));
  EXPECT_TRUE(isVirtual(&Repository::addServiceInvoker));
  EXPECT_TRUE(isVirtual(&Repository::findService));
  EXPECT_TRUE(isVirtual<Proxy* (Repository::*)(Text&)>(&Repository::findServiceProxy));
  EXPECT_TRUE(
      (isVirtual<Proxy* (Repository::*)(Text&, Text&, Text&)>(&Repository::findServiceProxy)));
  EXPECT_TRUE(isVirtual(&Repository::findServiceInvoker));
  EXPECT_TRUE(isVirtual(&Repository::findSvcChannel));
  EXPECT_TRUE(isVirtual(&Repository::containsService));
  EXPECT_TRUE(isVirtual(&Repository::getServiceData));
  EXPECT_TRUE(isVirtual(&Repository::shutdownAllServices));
  EXPECT_TRUE(isVirtual(&Repository::deleteAllServices));
  EXPECT_TRUE(isVirtual(&Repository::deleteAllServiceInvokers));
  EXPECT_TRUE(isVirtual(&Repository::deleteAllServiceProxies));
  EXPECT_TRUE(isVirtual(&Repository::deleteOneServiceProxy));
  EXPECT_TRUE(std::has_virtual_destructor_v<Repository>);
}

/** What derives from a class has its first operation of its own where the class's table ends. */
template <class Base>
class Derived : public Base {
 public:
  virtual void next() = 0;

 protected:
  ~Derived() = default;
};

template <class Base>
std::ptrdiff_t slotsOf() {
  return slotOf(&Derived<Base>::next);
}

// A virtual destructor stands in two places, side by side.

TEST(TheTables, OfTheContextsEndAfterTheirLastOperation) {
  EXPECT_EQ(slotsOf<SvcRTEContext>(), 13);
  EXPECT_EQ(slotsOf<FrameworkContext>(), 9);
}

TEST(TheTables, OfTheRepositoriesEndAfterTheirDestructor) {
  EXPECT_EQ(slotsOf<AbstractServiceRepository>(), 18);
  EXPECT_EQ(slotsOf<ServiceRepository>(), 18);
}

// The operations of the framework's side that the side of services does not have follow it.
TEST(TheTables, OfTheConfiguratorEndAfterTheFrameworksOperations) {
  EXPECT_EQ(slotsOf<ServiceConfigurator>(), 13 + 6);
}

TEST(TheTables, OfTheExceptionEndWhereItsBasesDoes) {
  EXPECT_EQ(slotsOf<FrameworkException>(), slotsOf<ZervaException>());
}

// The exception adds nothing: an operation that it declared would be an operation of its own class.
TEST(TheException, HasTheOperationsOfItsBase) {
  EXPECT_TRUE(
      (std::is_same_v<decltype(&FrameworkException::what), decltype(&ZervaException::what)>));
  EXPECT_TRUE((std::is_same_v<decltype(&FrameworkException::serialize),
                              decltype(&ZervaException::serialize)>));
  EXPECT_TRUE((std::is_same_v<decltype(&FrameworkException::deserialize),
                              decltype(&ZervaException::deserialize)>));
}

TEST(TheException, CanBeThrownByValueWithoutFailing) {
  EXPECT_TRUE(std::is_nothrow_copy_constructible_v<FrameworkException>);
  EXPECT_TRUE(std::is_nothrow_destructible_v<FrameworkException>);
}

template <class Base>
class Ended final : public Base {
 public:
  ~Ended() = default;
};

TEST(TheDestructors, LetNoExceptionOut) {
  EXPECT_TRUE(std::is_nothrow_destructible_v<ServiceConfigurator>);
  EXPECT_TRUE(std::is_nothrow_destructible_v<ServiceRepository>);
  EXPECT_TRUE(std::is_nothrow_destructible_v<AbstractServiceRepository>);
  EXPECT_TRUE(std::is_nothrow_destructible_v<SvcRTEContext>);
  EXPECT_TRUE(std::is_nothrow_destructible_v<Ended<FrameworkContext>>);
}

// What a class derives from is read from what casts at run time go by.

template <class Class>
bool hasNoBase() {
  return typeid(typeid(Class)) == typeid(abi::__class_type_info);
}

/** @returns whether a class derives publicly from just that one, which lies at its beginning. */
template <class Class, class Base>
bool hasTheBase() {
  const auto* type = dynamic_cast<const abi::__si_class_type_info*>(&typeid(Class));
  return type != nullptr && *type->__base_type == typeid(Base);
}

TEST(TheClasses, OfTheInterfacesHaveNoBasesButTheSharedContext) {
  EXPECT_TRUE(hasNoBase<AbstractServiceRepository>());
  EXPECT_TRUE(hasNoBase<FrameworkContext>());
  EXPECT_TRUE((hasTheBase<SvcRTEContext, Context>()));
  EXPECT_EQ(sizeof(AbstractServiceRepository), sizeof(void*));
  EXPECT_EQ(sizeof(FrameworkContext), sizeof(void*));
  EXPECT_EQ(sizeof(SvcRTEContext), sizeof(void*));
}

TEST(TheClasses, OfRepositoryAndExceptionHaveOneBaseEach) {
  EXPECT_TRUE((hasTheBase<ServiceRepository, AbstractServiceRepository>()));
  EXPECT_TRUE((hasTheBase<FrameworkException, ZervaException>()));
}

TEST(TheClasses, OfTheConfiguratorHasThePublicContextAndTheOtherForItself) {
  const auto* type = dynamic_cast<const abi::__vmi_class_type_info*>(&typeid(ServiceConfigurator));
  ASSERT_NE(type, nullptr);
  ASSERT_EQ(type->__base_count, 2U);
  const abi::__base_class_type_info& first = type->__base_info[0];
  const abi::__base_class_type_info& second = type->__base_info[1];
  EXPECT_EQ(*first.__base_type, typeid(SvcRTEContext));
  EXPECT_TRUE(first.__is_public_p());
  EXPECT_FALSE(first.__is_virtual_p());
  EXPECT_EQ(*second.__base_type, typeid(FrameworkContext));
  EXPECT_FALSE(second.__is_public_p());
  EXPECT_FALSE(second.__is_virtual_p());
}

}  // namespace
