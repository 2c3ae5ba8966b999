#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ServiceConfigurator.h"
#include "ServiceRepository.h"
#include "framework/CCInterceptorDispatcher.h"
#include "framework/CommsChannel.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "tests/plugins/relay/Relay.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/** A configurator whose other side a test can see. */
class OpenConfigurator : public ServiceConfigurator {
 public:
  using ServiceConfigurator::findInvoker;
  using ServiceConfigurator::findProxy;
  using ServiceConfigurator::ServiceConfigurator;
};

/**
 * A host by hand: a configurator with the registry, and relays that call each other through proxies
 * and invokers which the registry knows.
 */
class SystemWorld {
 public:
  /** The keyword that the registry is started with; none when it is in another process. */
  static constexpr const char* kRegistry = "service_instance: MT";

  SystemWorld();
  ~SystemWorld();
  SystemWorld(const SystemWorld&) = delete;
  SystemWorld& operator=(const SystemWorld&) = delete;

  /** Starts the registry and what further directives say. */
  void start(const std::string& directives, const std::string& registry = kRegistry);

  /** Does what a further directive file says. */
  void process(const std::string& directives);

  /** Stops, waits and deletes as a host does. */
  void end();

  /** @returns the lines for one relay and for the code of its calls. */
  static std::string relay(const std::string& keyword, const std::string& ifc);

  /** @returns the lines for several, called "RelayIfc1" and so on. */
  static std::string relays(const std::string& keyword, int count);

  /** Finds a relay as a service does. @returns null when there is none. */
  Relay* find(const std::string& ifc);

  /** @returns how many invokers of relays were made since their library was opened. */
  static int invokersMade();

  const TempDirectory directory;
  ServiceRepository repository;
  CCInterceptorDispatcher channelInterceptors;
  InvokeInterceptorDispatcher invokeInterceptors;
  ProtocolRepository protocols;
  CommsChannel channel{"/test/host", nullptr};
  std::unique_ptr<OpenConfigurator> sut;
};

}  // namespace zerva
