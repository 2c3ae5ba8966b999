#include <gmock/gmock.h>

#include <type_traits>

#include "ServiceConfigurator.h"
#include "ServiceRepository.h"

// By value or by reference, constant or not: what a library was compiled with is what it passes.

namespace {

using Configurator = ServiceConfigurator;
using Repository = ServiceRepository;
using Text = std::string;

/** @returns whether an operation has exactly this type; picks the overload that does. */
template <class Type>
constexpr bool is(Type /*operation*/) {
  return true;
}

TEST(TheConfiguratorsOperations, OnDirectivesTakeAndGiveTextsAsDeclared) {
  EXPECT_TRUE(is<void (Configurator::*)(Text)>(&Configurator::processDirectives));
  EXPECT_TRUE((is<std::vector<Text> (Configurator::*)(const char*, int, Text)>(
      &Configurator::parseDirectives)));
  EXPECT_TRUE(is<void (Configurator::*)(Text&)>(&Configurator::formatString));
}

TEST(TheConfiguratorsOperations, OnServicesTakeAndGiveTextsAsDeclared) {
  EXPECT_TRUE((is<Service* (Configurator::*)(Text, Text, Text)>(&Configurator::createService)));
  EXPECT_TRUE(
      (is<Service* (Configurator::*)(const Text&, const Text&, const Text&, const Text&, bool)>(
          &Configurator::createServiceExecutor)));
  EXPECT_TRUE(
      (is<Service* (Configurator::*)(const Text&, const Text&, const Text&, const Text&, bool)>(
          &Configurator::createServiceExecutorDelayedInitialisation)));
  EXPECT_TRUE((is<Service* (Configurator::*)(ServiceExecutor*, Text, Text, CommsChannelIfc*, Text)>(
      &Configurator::initialiseService)));
  EXPECT_TRUE(
      (is<Service* (Configurator::*)(const Text&, const Text&)>(&Configurator::findRealService)));
  EXPECT_TRUE((is<Text (Configurator::*)(Executable*)>(&Configurator::findChannel)));
}

TEST(TheConfiguratorsOperations, OnTheRegistryTakeAndGiveTextsAsDeclared) {
  EXPECT_TRUE((is<void (Configurator::*)(const Text&, const Text&, const Text&, const Text&)>(
      &Configurator::registerInvokerInfo)));
  EXPECT_TRUE((is<void (Configurator::*)(const Text&, const Text&, const Text&, const Text&)>(
      &Configurator::registerProxyInfo)));
  EXPECT_TRUE((is<void (Configurator::*)(Text&, Text&)>(&Configurator::findInRegistry)));
  EXPECT_TRUE((is<Proxy* (Configurator::*)(Text&, Text&, Text&, Text&, Text&)>(
      &Configurator::initProxyAndAddToRepository)));
}

TEST(TheConfiguratorsOperations, OnLookupsTakeAndGiveTextsAsDeclared) {
  EXPECT_TRUE((is<Executable* (Configurator::*)(Text&)>(&Configurator::findExecutable)));
  EXPECT_TRUE((is<Executable* (Configurator::*)(const Text&)>(&Configurator::findService)));
  EXPECT_TRUE((is<Proxy* (Configurator::*)(Text&, Text&)>(&Configurator::findProxy)));
  EXPECT_TRUE((is<Proxy* (Configurator::*)(Text&, Text&, Text&)>(&Configurator::findProxy)));
  EXPECT_TRUE((is<Invoker* (Configurator::*)(Text&, Text&)>(&Configurator::findInvoker)));
  EXPECT_TRUE((is<ProtocolAdapter* (Configurator::*)(Text&)>(&Configurator::findProtocolAdapter)));
  EXPECT_TRUE((is<void (Configurator::*)(Proxy*, Text&)>(
      &Configurator::removeAndDeleteProxyFromRepository)));
}

TEST(TheConfiguratorsConstructors, TakeTheHostsObjectsInTheirOrder) {
  EXPECT_TRUE(
      (std::is_constructible_v<Configurator, CommsChannelIfc*, AbstractServiceRepository*>));
  EXPECT_TRUE((std::is_constructible_v<Configurator, CommsChannelIfc*, AbstractServiceRepository*,
                                       CCInterceptorDispatcher*>));
  EXPECT_TRUE((std::is_constructible_v<Configurator, CommsChannelIfc*, AbstractServiceRepository*,
                                       AbstractProtocolRepository*, CCInterceptorDispatcher*,
                                       InvokeInterceptorDispatcher*>));
  EXPECT_TRUE((
      is<void (Configurator::*)(CommsChannelIfc*, AbstractServiceRepository*,
                                AbstractProtocolRepository*, CCInterceptorDispatcher*,
                                InvokeInterceptorDispatcher*)>(&Configurator::constructorActions)));
}

TEST(TheRepositorysOperations, TakeTextsOfServicesByValueAndOthersByReference) {
  EXPECT_TRUE((is<void (Repository::*)(Service*, Dll*, Text)>(&Repository::addService)));
  EXPECT_TRUE((is<void (Repository::*)(Service*, ServiceExecutor*, CommsChannelIfc*, Dll*, Text)>(
      &Repository::addService)));
  EXPECT_TRUE((is<void (Repository::*)(Proxy*, Dll*, CommsChannelIfc*, ProxyRequest*, Text&)>(
      &Repository::addServiceProxy)));
  EXPECT_TRUE(
      (is<void (Repository::*)(Invoker*, Dll*, Text&, Text&)>(&Repository::addServiceInvoker)));
}

TEST(TheRepositorysLookups, TakeAndGiveTextsAsDeclared) {
  EXPECT_TRUE((is<Service* (Repository::*)(Text&, const Text&)>(&Repository::findService)));
  EXPECT_TRUE((is<Proxy* (Repository::*)(Text&)>(&Repository::findServiceProxy)));
  EXPECT_TRUE((is<Proxy* (Repository::*)(Text&, Text&, Text&)>(&Repository::findServiceProxy)));
  EXPECT_TRUE((is<Invoker* (Repository::*)(Text&, Text&)>(&Repository::findServiceInvoker)));
  EXPECT_TRUE((is<Text (Repository::*)(Service*)>(&Repository::findSvcChannel)));
  EXPECT_TRUE((is<bool (Repository::*)(Service*)>(&Repository::containsService)));
  EXPECT_TRUE((is<SvcData* (Repository::*)(Service*)>(&Repository::getServiceData)));
  EXPECT_TRUE((is<void (Repository::*)(Proxy*, Text&)>(&Repository::deleteOneServiceProxy)));
}

}  // namespace
