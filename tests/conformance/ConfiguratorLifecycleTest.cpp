#include <stdexcept>

#include "FrameworkException.h"
#include "framework/Semaphore.h"
#include "framework/ServiceThreadPool.h"
#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {
namespace {

const char* const kNoRegistryInvoker =
    "Unable to open 'service registry invoker' library '%s': '%s'";
const char* const kNoSuchLibrary = "libServiceRegistry.so: no such library";

class AConfigurator : public HostTest {
 protected:
  /** What construction does on a platform without the registry's library. */
  static Lines constructed(const std::string& invokeDispatcher) {
    return {"ServiceThreadPool#1 = ServiceThreadPool(50, " + invokeDispatcher + ")",
            "FwkTimer#1 = FwkTimer(FrameworkContext)",
            "proxySem = Semaphore(1, 1, false)",
            "invokerSem = Semaphore(1, 1, false)",
            "registrySem = Semaphore(1, 1, false)",
            "Dll#1 = Dll(\"libServiceRegistry.so\")",
            std::string("Dll#1.error() -> \"") + kNoSuchLibrary + "\"",
            error(kNoRegistryInvoker, "libServiceRegistry.so", kNoSuchLibrary),
            printed(std::string("Unable to open 'service registry invoker' library "
                                "'libServiceRegistry.so': '") +
                    kNoSuchLibrary + "'"),
            "~Dll#1"};
  }

  static Lines destroyed() {
    return {"timer.shutdown()",
            "repository.shutdownAllServices()",
            "repository.deleteAllServices()",
            "repository.deleteAllServiceProxies()",
            "repository.deleteAllServiceInvokers()",
            "~pool",
            "~timer",
            "~proxySem",
            "~invokerSem",
            "~registrySem"};
  }

  std::unique_ptr<OpenConfigurator> full() {
    return make<OpenConfigurator>(&channel, &repository, &protocols, &interceptors,
                                  &invokeInterceptors);
  }
};

TEST_F(AConfigurator, OfAllParts_MakesPoolTimerAndSemaphoresAndThenTheRegistryInvoker) {
  const auto sut = makeRecorded<OpenConfigurator>(&channel, &repository, &protocols, &interceptors,
                                                  &invokeInterceptors);
  expectTrace(constructed("invokeInterceptors"));
}

TEST_F(AConfigurator, OfAllParts_KeepsWhatTheHostGaveIt) {
  const auto sut = full();
  EXPECT_EQ(sut->commsChannel, &channel);
  EXPECT_EQ(sut->serviceRepository, &repository);
  EXPECT_EQ(sut->ccInterceptorDispatcher, &interceptors);
  EXPECT_EQ(sut->protocolRepository, &protocols);
  EXPECT_EQ(sut->invokeInterceptorDispatcher, &invokeInterceptors);
}

TEST_F(AConfigurator, OfAllParts_HasARequestIdOfZero) { EXPECT_EQ(full()->registryRequestId, 0u); }

TEST_F(AConfigurator, OfChannelAndRepository_HasNoProtocolsAndNoDispatchers) {
  const auto sut = makeRecorded<OpenConfigurator>(&channel, &repository);
  expectTrace(constructed("null"));
  EXPECT_EQ(sut->commsChannel, &channel);
  EXPECT_EQ(sut->serviceRepository, &repository);
  EXPECT_EQ(sut->ccInterceptorDispatcher, nullptr);
  EXPECT_EQ(sut->protocolRepository, nullptr);
  EXPECT_EQ(sut->invokeInterceptorDispatcher, nullptr);
}

TEST_F(AConfigurator, OfANullChannel_IsComplete) {
  const auto sut =
      makeRecorded<OpenConfigurator>(static_cast<CommsChannelIfc*>(nullptr), &repository);
  expectTrace(constructed("null"));
  EXPECT_EQ(sut->commsChannel, nullptr);
}

TEST_F(AConfigurator, WithChannelDispatcher_HasNoProtocolsAndNoInvokeDispatcher) {
  const auto sut = makeRecorded<OpenConfigurator>(&channel, &repository, &interceptors);
  expectTrace(constructed("null"));
  EXPECT_EQ(sut->commsChannel, &channel);
  EXPECT_EQ(sut->serviceRepository, &repository);
  EXPECT_EQ(sut->ccInterceptorDispatcher, &interceptors);
  EXPECT_EQ(sut->protocolRepository, nullptr);
  EXPECT_EQ(sut->invokeInterceptorDispatcher, nullptr);
}

TEST_F(AConfigurator, OfAllPartsWithNullDispatchers_IsComplete) {
  const auto sut = makeRecorded<OpenConfigurator>(
      &channel, &repository, &protocols, static_cast<CCInterceptorDispatcher*>(nullptr),
      static_cast<InvokeInterceptorDispatcher*>(nullptr));
  expectTrace(constructed("null"));
  EXPECT_EQ(sut->protocolRepository, &protocols);
  EXPECT_EQ(sut->ccInterceptorDispatcher, nullptr);
}

/** What a configurator of less than all parts hands to its services' channels and executors. */
class TheDispatchersOfAService : public AConfigurator {
 protected:
  void expectHandedOn(OpenConfigurator& sut, const std::string& toChannel) {
    offerService("libfoo.so", "createFoo");
    sut.createServiceExecutor("libfoo.so", "createFoo", "c", "ServiceRegistryIfc", true);
    sut.createServiceExecutorDelayedInitialisation("lib", "create", "d", "ServiceRegistryIfc",
                                                   false);
    const Lines lines = Trace::lines();
    EXPECT_THAT(lines,
                testing::Contains("CommsChannel#1 = CommsChannel(\"c\", " + toChannel + ")"));
    EXPECT_THAT(lines, testing::Contains("ServiceExecutor#1 = ServiceExecutor(Service#1, "
                                         "CommsChannel#1, \"ServiceRegistryIfc\", "
                                         "FrameworkContext, pool, null, true)"));
    EXPECT_THAT(lines,
                testing::Contains("CommsChannel#2 = CommsChannel(\"d\", " + toChannel + ")"));
    EXPECT_THAT(lines, testing::Contains("ServiceExecutor#2 = ServiceExecutor(\"lib\", "
                                         "\"create\", \"ServiceRegistryIfc\", CommsChannel#2, "
                                         "FrameworkContext, pool, null, false)"));
  }
};

TEST_F(TheDispatchersOfAService, OfChannelAndRepository_AreNull) {
  expectHandedOn(*make<OpenConfigurator>(&channel, &repository), "null");
}

TEST_F(TheDispatchersOfAService, WithChannelDispatcher_AreThatOneAndNull) {
  expectHandedOn(*make<OpenConfigurator>(&channel, &repository, &interceptors), "interceptors");
}

TEST_F(TheDispatchersOfAService, OfAllPartsWithNullDispatchers_AreNull) {
  expectHandedOn(*make<OpenConfigurator>(&channel, &repository, &protocols,
                                         static_cast<CCInterceptorDispatcher*>(nullptr),
                                         static_cast<InvokeInterceptorDispatcher*>(nullptr)),
                 "null");
}

template <class Construction>
std::string frameworkExceptionOf(const Construction& construct) {
  try {
    construct();
  } catch (FrameworkException& exception) {
    return exception.what();
  }
  return "no FrameworkException";
}

TEST_F(AConfigurator, OfANullChannelDispatcher_ThrowsBeforeAnythingIsMade) {
  EXPECT_EQ(frameworkExceptionOf([this] {
              ServiceConfigurator sut(&channel, &repository,
                                      static_cast<CCInterceptorDispatcher*>(nullptr));
            }),
            "NULL CCInterceptorDispatcher Exception");
  expectTrace({});
}

TEST_F(AConfigurator, OfANullChannelDispatcherAndANullRepository_ThrowsForTheDispatcher) {
  EXPECT_EQ(frameworkExceptionOf([this] {
              ServiceConfigurator sut(&channel, nullptr,
                                      static_cast<CCInterceptorDispatcher*>(nullptr));
            }),
            "NULL CCInterceptorDispatcher Exception");
  expectTrace({});
}

TEST_F(AConfigurator, OfANullProtocolRepository_ThrowsBeforeAnythingIsMade) {
  EXPECT_EQ(frameworkExceptionOf([this] {
              ServiceConfigurator sut(&channel, &repository, nullptr, &interceptors,
                                      &invokeInterceptors);
            }),
            "NULL ProtocolRepository was passed into ServiceConfigurator constructor");
  expectTrace({});
}

TEST_F(AConfigurator, OfANullProtocolRepositoryAndANullRepository_ThrowsForTheProtocols) {
  EXPECT_EQ(frameworkExceptionOf([this] {
              ServiceConfigurator sut(&channel, nullptr, nullptr, &interceptors,
                                      &invokeInterceptors);
            }),
            "NULL ProtocolRepository was passed into ServiceConfigurator constructor");
  expectTrace({});
}

template <class Construction>
std::string bareTextOf(const Construction& construct) {
  try {
    construct();
  } catch (const char* text) {
    return text;
  }
  return "no const char*";
}

const char* const kPlaceholder = "This is a placeholder for a real exception object!";

TEST_F(AConfigurator, OfChannelAndNullRepository_ThrowsABareTextBeforeAnythingIsMade) {
  EXPECT_EQ(bareTextOf([this] { ServiceConfigurator sut(&channel, nullptr); }), kPlaceholder);
  expectTrace({});
}

TEST_F(AConfigurator, WithChannelDispatcherAndNullRepository_ThrowsABareText) {
  EXPECT_EQ(bareTextOf([this] { ServiceConfigurator sut(&channel, nullptr, &interceptors); }),
            kPlaceholder);
  expectTrace({});
}

TEST_F(AConfigurator, OfAllPartsAndNullRepository_ThrowsABareText) {
  EXPECT_EQ(bareTextOf([this] {
              ServiceConfigurator sut(&channel, nullptr, &protocols, &interceptors,
                                      &invokeInterceptors);
            }),
            kPlaceholder);
  expectTrace({});
}

TEST_F(AConfigurator, ThatIsDeleted_StopsTheTimerThenTheServicesAndDeletesInOrder) {
  auto sut = full();
  sut.reset();
  expectTrace(destroyed());
}

TEST_F(AConfigurator, ThatIsDeleted_PassesOverWhatItHasNot) {
  auto sut = full();
  for (Semaphore** semaphore : {&sut->proxySem, &sut->invokerSem, &sut->registrySem}) {
    delete *semaphore;
    *semaphore = nullptr;
  }
  delete sut->threadPool;
  sut->threadPool = nullptr;
  forget();
  sut.reset();
  expectTrace({"timer.shutdown()", "repository.shutdownAllServices()",
               "repository.deleteAllServices()", "repository.deleteAllServiceProxies()",
               "repository.deleteAllServiceInvokers()", "~timer"});
}

/** What happens only in a process of its own. */
using AConfiguratorDeathTest = ConfiguratorTest;

TEST_F(AConfiguratorDeathTest, ThatIsDeleted_LetsNoExceptionOut) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  recordService("FooIfc", "fooChannel");
  const auto deleteIt = [this] {
    Platform::once("Service#1.stop(", [] { throw std::runtime_error("not now"); });
    // Not by what owns it, which lets none out either.
    try {
      delete sut.release();
    } catch (const std::runtime_error&) {
    }
  };
  EXPECT_DEATH(deleteIt(), "not now");
}

TEST_F(AConfigurator, ThatIsDeletedThroughItsContextSide_EndsAllTheSame) {
  SvcRTEContext* context = full().release();
  delete context;
  expectTrace(destroyed());
}

TEST_F(AConfigurator, ThatIsDeleted_LeavesTheObjectsOfTheHost) {
  auto sut = full();
  sut.reset();
  EXPECT_TRUE(fakes::Objects::isAlive(&channel));
  EXPECT_TRUE(fakes::Objects::isAlive(&interceptors));
  EXPECT_TRUE(fakes::Objects::isAlive(&invokeInterceptors));
  EXPECT_TRUE(fakes::Objects::isAlive(&protocols));
}

TEST_F(AConfigurator, ThatIsShutDown_StopsTimerAndServicesAndDeletesNothing) {
  const auto sut = full();
  sut->shutdown();
  expectTrace({"timer.shutdown()", "repository.shutdownAllServices()"});
}

TEST_F(AConfigurator, ThatWasShutDownAndIsDeleted_StopsEverythingAgain) {
  auto sut = full();
  sut->shutdown();
  forget();
  sut.reset();
  expectTrace(destroyed());
}

TEST_F(AConfigurator, WhoseRegistryInvokersCreatorThrows_LeavesNothingOfItsOwn) {
  offer("libServiceRegistry.so", "createServiceRegistryInvoker",
        fakes::Creators::invoker([]() -> Invoker* { throw std::runtime_error("no invoker"); }));
  EXPECT_THROW(makeRecorded<OpenConfigurator>(&channel, &repository), std::runtime_error);
  // The library stays mapped, since the exception's type may live in it.
  leaves("Dll#1");
}

TEST_F(AConfigurator, Constants_HaveTheNamesOfTheRegistry) {
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_LIB, "libServiceRegistry.so");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_CREATORFN, "createServiceRegistryInvoker");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_INTERFACE, "ServiceRegistryIfc");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL1, "zerva_svc_xml");
  EXPECT_EQ(OpenConfigurator::SVC_REG_INVOKER_PROTOCOL2, "zerva_simple_rmi");
}

class ConfiguratorTimers : public ConfiguratorTest {
 protected:
  fakes::RecordingService owner;
};

TEST_F(ConfiguratorTimers, CreateTimer_IsTheTimersOwn) {
  Platform::answer("timer.createTimer(Service#1, 250", 77);
  EXPECT_EQ(sut->createTimer(&owner, 250), 77);
  expectTrace({"timer.createTimer(Service#1, 250)"});
}

TEST_F(ConfiguratorTimers, CreateTimerWithNullOwner_IsTheTimersOwn) {
  EXPECT_EQ(sut->createTimer(nullptr, 250), 0);
  expectTrace({"timer.createTimer(null, 250)"});
}

/** An operation of the configurator that takes a timer's id, and its name. */
struct TimerOperation {
  const char* name;
  bool (SvcRTEContext::*operation)(int);
};

class ConfiguratorTimerOperation : public ConfiguratorTest,
                                   public testing::WithParamInterface<TimerOperation> {};

TEST_P(ConfiguratorTimerOperation, IsTheTimersOwn) {
  SvcRTEContext& context = *sut;
  const std::string call = std::string("timer.") + GetParam().name + "(42";
  const std::string other = std::string("timer.") + GetParam().name + "(43";
  Platform::answer(call, 1);
  Platform::answer(other, 0);
  EXPECT_TRUE((context.*GetParam().operation)(42));
  EXPECT_FALSE((context.*GetParam().operation)(43));
  expectTrace({call + ")", other + ")"});
}

INSTANTIATE_TEST_SUITE_P(Each, ConfiguratorTimerOperation,
                         testing::Values(TimerOperation{"startTimer", &SvcRTEContext::startTimer},
                                         TimerOperation{"stopTimer", &SvcRTEContext::stopTimer},
                                         TimerOperation{"resetTimer", &SvcRTEContext::resetTimer},
                                         TimerOperation{"deleteTimer", &SvcRTEContext::deleteTimer},
                                         TimerOperation{"timerRunning",
                                                        &SvcRTEContext::timerRunning}),
                         [](const auto& each) { return std::string(each.param.name); });

class FindExecutable : public ConfiguratorTest {};

TEST_F(FindExecutable, IsFindServiceCalledVirtually) {
  fakes::RecordingService service;
  sut->services["ServiceRegistryIfc"] = &service;
  std::string name = "ServiceRegistryIfc";
  Context& context = *sut;
  EXPECT_EQ(context.findExecutable(name), &service);
  expectTrace({"configurator.findService(\"ServiceRegistryIfc\")"});
}

TEST_F(FindExecutable, OfAnUnknownName_GivesNull) {
  sut->services["FooIfc"] = nullptr;
  std::string name = "FooIfc";
  EXPECT_EQ(sut->findExecutable(name), nullptr);
}

TEST_F(FindExecutable, AndFindService_GiveTheSameRecordedProxy) {
  auto* proxy = new fakes::RecordingProxy;
  std::string name = "ServiceRegistryIfc";
  // The repository's from here on.
  inner.addServiceProxy(proxy, nullptr, nullptr, nullptr, name);
  EXPECT_EQ(sut->findExecutable(name), proxy);
  EXPECT_EQ(sut->findService(name), proxy);
}

class DeleteProxy : public ConfiguratorTest {};

TEST_F(DeleteProxy, HasNoEffect) {
  fakes::RecordingProxy proxy;
  sut->framework().deleteProxy(&proxy);
  sut->framework().deleteProxy(nullptr);
  expectTrace({});
  EXPECT_TRUE(fakes::Objects::isAlive(&proxy));
}

TEST(AFrameworkException, IsTheFrameworksBaseExceptionWithItsMessage) {
  const FrameworkException sut("a message");
  const ZervaException& base = sut;
  EXPECT_STREQ(base.what(), "a message");
  EXPECT_EQ(sut.serialize(), ZervaException("a message").serialize());
}

}  // namespace
}  // namespace zerva::conformance
