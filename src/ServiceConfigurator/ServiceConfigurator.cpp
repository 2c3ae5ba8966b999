#include "ServiceConfigurator.h"

#include <memory>

#include "AbstractServiceRepository.h"
#include "FrameworkException.h"
#include "framework/FwkTimer.h"
#include "framework/Semaphore.h"
#include "framework/ServiceThreadPool.h"

const std::string ServiceConfigurator::SVC_REG_INVOKER_LIB("libServiceRegistry.so");
const std::string ServiceConfigurator::SVC_REG_INVOKER_CREATORFN("createServiceRegistryInvoker");
const std::string ServiceConfigurator::SVC_REG_INVOKER_INTERFACE("ServiceRegistryIfc");
const std::string ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL1("zerva_svc_xml");
const std::string ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL2("zerva_simple_rmi");

ServiceConfigurator::ServiceConfigurator(CommsChannelIfc* channel,
                                         AbstractServiceRepository* repository) {
  constructorActions(channel, repository, nullptr, nullptr, nullptr);
}

ServiceConfigurator::ServiceConfigurator(CommsChannelIfc* channel,
                                         AbstractServiceRepository* repository,
                                         CCInterceptorDispatcher* dispatcher) {
  if (dispatcher == nullptr) {
    throw FrameworkException("NULL CCInterceptorDispatcher Exception");
  }
  constructorActions(channel, repository, nullptr, dispatcher, nullptr);
}

// The dispatchers may be null here: whoever has a protocol repository need not intercept anything.
ServiceConfigurator::ServiceConfigurator(CommsChannelIfc* channel,
                                         AbstractServiceRepository* repository,
                                         AbstractProtocolRepository* protocols,
                                         CCInterceptorDispatcher* dispatcher,
                                         InvokeInterceptorDispatcher* invokeDispatcher) {
  if (protocols == nullptr) {
    throw FrameworkException(
        "NULL ProtocolRepository was passed into ServiceConfigurator constructor");
  }
  constructorActions(channel, repository, protocols, dispatcher, invokeDispatcher);
}

void ServiceConfigurator::constructorActions(CommsChannelIfc* channel,
                                             AbstractServiceRepository* repository,
                                             AbstractProtocolRepository* protocols,
                                             CCInterceptorDispatcher* dispatcher,
                                             InvokeInterceptorDispatcher* invokeDispatcher) {
  if (repository == nullptr) {
    throw "This is a placeholder for a real exception object!";
  }
  commsChannel = channel;
  serviceRepository = repository;
  ccInterceptorDispatcher = dispatcher;
  protocolRepository = protocols;
  invokeInterceptorDispatcher = invokeDispatcher;

  // Ours; the destructor deletes them. Until there is an object to destroy they are held here: the
  // creator of the registry invoker may throw.
  auto pool = std::make_unique<ServiceThreadPool>(50, invokeInterceptorDispatcher);
  threadPool = pool.get();
  auto timers = std::make_unique<FwkTimer>(static_cast<FrameworkContext*>(this));
  timer = timers.get();
  auto proxies = std::make_unique<Semaphore>(1, 1, false);
  proxySem = proxies.get();
  auto invokers = std::make_unique<Semaphore>(1, 1, false);
  invokerSem = invokers.get();
  auto registry = std::make_unique<Semaphore>(1, 1, false);
  registrySem = registry.get();
  registryRequestId = 0;

  createSvcRegInvoker();

  pool.release();
  timers.release();
  proxies.release();
  invokers.release();
  registry.release();
}

// The timer first, so that nobody is called any more while services go; what was made then goes in
// an order in which everything outlives what uses it. The host's objects stay.
ServiceConfigurator::~ServiceConfigurator() {
  timer->shutdown();
  serviceRepository->shutdownAllServices();
  serviceRepository->deleteAllServices();
  serviceRepository->deleteAllServiceProxies();
  serviceRepository->deleteAllServiceInvokers();
  delete threadPool;
  delete timer;
  delete proxySem;
  delete invokerSem;
  delete registrySem;
}

void ServiceConfigurator::shutdown() {
  timer->shutdown();
  serviceRepository->shutdownAllServices();
}

Executable* ServiceConfigurator::findExecutable(std::string& name) { return findService(name); }

int ServiceConfigurator::createTimer(Executable* owner, int period) {
  return timer->createTimer(owner, period);
}

bool ServiceConfigurator::startTimer(int id) { return timer->startTimer(id); }

bool ServiceConfigurator::stopTimer(int id) { return timer->stopTimer(id); }

bool ServiceConfigurator::resetTimer(int id) { return timer->resetTimer(id); }

bool ServiceConfigurator::deleteTimer(int id) { return timer->deleteTimer(id); }

bool ServiceConfigurator::timerRunning(int id) { return timer->timerRunning(id); }
