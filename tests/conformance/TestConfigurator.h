#pragma once

#include <map>
#include <optional>
#include <string>

#include "FrameworkContext.h"
#include "ServiceConfigurator.h"

namespace zerva::conformance {

/** A configurator whose parts a test can see. */
class OpenConfigurator : public ServiceConfigurator {
 public:
  using ServiceConfigurator::ServiceConfigurator;

  using ServiceConfigurator::SVC_REG_INVOKER_CREATORFN;
  using ServiceConfigurator::SVC_REG_INVOKER_INTERFACE;
  using ServiceConfigurator::SVC_REG_INVOKER_LIB;
  using ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL1;
  using ServiceConfigurator::SVC_REG_INVOKER_PROTOCOL2;

  using ServiceConfigurator::ccInterceptorDispatcher;
  using ServiceConfigurator::commsChannel;
  using ServiceConfigurator::invokeInterceptorDispatcher;
  using ServiceConfigurator::invokerSem;
  using ServiceConfigurator::protocolRepository;
  using ServiceConfigurator::proxySem;
  using ServiceConfigurator::registryRequestId;
  using ServiceConfigurator::registrySem;
  using ServiceConfigurator::serviceRepository;
  using ServiceConfigurator::threadPool;
  using ServiceConfigurator::timer;

  /** The side that executors, the timer and the requests of proxies have. */
  FrameworkContext& framework() { return *this; }

  /** Names the two sides that a configurator in this memory will have. */
  static void nameSides(void* memory);

  /** Names the pool and the timer. */
  void nameParts() const;
};

/**
 * A configurator that overrides the operations which others must call virtually. Each call is a
 * line of the trace; the answer is what the test scripted, else the configurator's own, whose calls
 * are nested.
 */
class TestConfigurator : public OpenConfigurator {
 public:
  using OpenConfigurator::OpenConfigurator;

  /** Answers of `findService`, by interface. */
  std::map<std::string, Executable*> services;
  /** Answers of `findExecutable`, by name. A call without one goes on unseen. */
  std::map<std::string, Executable*> executables;
  /** The answer of `findChannel`. */
  std::optional<std::string> channelName;
  /** The answer of `findProxy` with three arguments. */
  std::optional<Proxy*> proxy;

  using OpenConfigurator::findProxy;
  Executable* findExecutable(std::string& name) override;
  Executable* findService(const std::string& ifc) override;
  Proxy* findProxy(std::string& ifc, std::string& svcChannel, std::string& qualifier) override;
  std::string findChannel(Executable* executable) override;
};

}  // namespace zerva::conformance
