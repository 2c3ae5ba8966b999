#include <gmock/gmock.h>

#include <array>
#include <set>
#include <string_view>

#include "tests/binary/BuiltLibrary.h"

namespace {

constexpr std::array<std::string_view, 6> kPublicClasses = {
    "AbstractServiceRepository", "FrameworkContext",  "FrameworkException",
    "ServiceConfigurator",       "ServiceRepository", "SvcRTEContext"};

/** @returns what comes before the parameters and the marks of the compiler. */
std::string plainName(const std::string& symbol) {
  return symbol.substr(0, symbol.find_first_of("([", symbol.find("::")));
}

/** @returns whether a symbol belongs to a class that hosts and services may use. */
bool isOfAPublicClass(const std::string& symbol) {
  constexpr std::array<std::string_view, 5> kinds = {
      "vtable for ", "typeinfo for ", "typeinfo name for ", "non-virtual thunk to ", ""};
  for (const std::string_view name : kPublicClasses) {
    for (const std::string_view kind : kinds) {
      const std::string start = std::string(kind) + std::string(name);
      if (symbol == start || symbol.starts_with(start + "::")) {
        return true;
      }
    }
  }
  return false;
}

/** Everything that has a definition of its own. Without it a host does not link. */
const std::set<std::string> kExpected = {
    "FrameworkException::FrameworkException",
    "FrameworkException::~FrameworkException",
    "ServiceConfigurator::ServiceConfigurator",
    "ServiceConfigurator::~ServiceConfigurator",
    "ServiceConfigurator::SVC_REG_INVOKER_CREATORFN",
    "ServiceConfigurator::SVC_REG_INVOKER_INTERFACE",
    "ServiceConfigurator::SVC_REG_INVOKER_LIB",
    "ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL1",
    "ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL2",
    "ServiceConfigurator::constructorActions",
    "ServiceConfigurator::createService",
    "ServiceConfigurator::createServiceExecutor",
    "ServiceConfigurator::createServiceExecutorDelayedInitialisation",
    "ServiceConfigurator::createSvcRegInvoker",
    "ServiceConfigurator::createTimer",
    "ServiceConfigurator::deleteTimer",
    "ServiceConfigurator::findChannel",
    "ServiceConfigurator::findExecutable",
    "ServiceConfigurator::findInRegistry",
    "ServiceConfigurator::findInvoker",
    "ServiceConfigurator::findProtocolAdapter",
    "ServiceConfigurator::findProxy",
    "ServiceConfigurator::findRealService",
    "ServiceConfigurator::findService",
    "ServiceConfigurator::formatString",
    "ServiceConfigurator::initProxyAndAddToRepository",
    "ServiceConfigurator::initialiseService",
    "ServiceConfigurator::parseDirectives",
    "ServiceConfigurator::processDirectives",
    "ServiceConfigurator::registerInvokerInfo",
    "ServiceConfigurator::registerProxyInfo",
    "ServiceConfigurator::removeAndDeleteProxyFromRepository",
    "ServiceConfigurator::resetTimer",
    "ServiceConfigurator::shutdown",
    "ServiceConfigurator::startTimer",
    "ServiceConfigurator::stopTimer",
    "ServiceConfigurator::timerRunning",
    "ServiceRepository::ServiceRepository",
    "ServiceRepository::~ServiceRepository",
    "ServiceRepository::addService",
    "ServiceRepository::addServiceInvoker",
    "ServiceRepository::addServiceProxy",
    "ServiceRepository::containsService",
    "ServiceRepository::deleteAllServiceInvokers",
    "ServiceRepository::deleteAllServiceProxies",
    "ServiceRepository::deleteAllServices",
    "ServiceRepository::deleteOneServiceProxy",
    "ServiceRepository::findService",
    "ServiceRepository::findServiceInvoker",
    "ServiceRepository::findServiceProxy",
    "ServiceRepository::findSvcChannel",
    "ServiceRepository::getServiceData",
    "ServiceRepository::shutdownAllServices",
};

/** Operations with a body in the header: exported or not, as the compiler pleases. */
const std::set<std::string> kInline = {
    "AbstractServiceRepository::~AbstractServiceRepository",
    "FrameworkContext::deleteProxy",
    "SvcRTEContext::~SvcRTEContext",
};

bool isOperation(const std::string& symbol) {
  return symbol.find(" for ") == std::string::npos && !symbol.starts_with("non-virtual thunk to ");
}

TEST(TheExportedSymbols, BelongToPublicClassesOnly) {
  const zerva::BuiltLibrary sut;
  for (const std::string& symbol : sut.exportedNames()) {
    EXPECT_TRUE(isOfAPublicClass(symbol)) << symbol;
  }
}

TEST(TheExportedSymbols, AreTheOperationsThatTheHeadersDeclare) {
  const zerva::BuiltLibrary sut;
  std::set<std::string> operations;
  for (const std::string& symbol : sut.exportedNames()) {
    if (isOperation(symbol) && !kInline.contains(plainName(symbol))) {
      operations.insert(plainName(symbol));
    }
  }
  EXPECT_EQ(operations, kExpected);
}

// A class that derives from one of these in another library needs them.
TEST(TheExportedSymbols, HoldTheTypesThatOthersDeriveFromOrHandle) {
  const zerva::BuiltLibrary sut;
  const std::vector<std::string> exported = sut.exportedNames();
  for (const char* name : {"FrameworkException", "ServiceConfigurator", "ServiceRepository"}) {
    EXPECT_THAT(exported, testing::Contains(std::string("typeinfo for ") + name));
    EXPECT_THAT(exported, testing::Contains(std::string("vtable for ") + name));
  }
}

// A derived class that does not override an operation of the framework's side refers to its thunk.
TEST(TheExportedSymbols, HoldAThunkForEachOperationOfTheFrameworksSide) {
  const zerva::BuiltLibrary sut;
  std::multiset<std::string> thunks;
  for (const std::string& symbol : sut.exportedNames()) {
    if (symbol.starts_with("non-virtual thunk to ")) {
      thunks.insert(plainName(symbol).substr(std::string("non-virtual thunk to ").size()));
    }
  }
  EXPECT_EQ(thunks,
            (std::multiset<std::string>{
                "ServiceConfigurator::findChannel", "ServiceConfigurator::findInvoker",
                "ServiceConfigurator::findProtocolAdapter", "ServiceConfigurator::findProxy",
                "ServiceConfigurator::findProxy", "ServiceConfigurator::findRealService",
                "ServiceConfigurator::initialiseService",
                "ServiceConfigurator::removeAndDeleteProxyFromRepository"}));
}

}  // namespace
