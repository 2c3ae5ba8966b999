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
#include "tests/system/Processors.h"

namespace zerva {

/** A configurator whose other side a test can see. */
class OpenConfigurator : public ServiceConfigurator {
 public:
  using ServiceConfigurator::findInvoker;
  using ServiceConfigurator::ServiceConfigurator;
};

/**
 * A host by hand: a configurator with the registry, and relays that call each other through proxies
 * and invokers which the registry knows. Each test runs on all processors and on one.
 */
class SystemWorld : public testing::TestWithParam<Processors> {
 protected:
  SystemWorld();
  ~SystemWorld() override;

  /** Starts the registry and what further directives say. */
  void start(const std::string& directives);

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

/** The tests of a class, with both numbers of processors. */
#define ZERVA_ON_ALL_PROCESSORS_AND_ON_ONE(suite)                                        \
  INSTANTIATE_TEST_SUITE_P(On, suite, testing::Values(Processors::All, Processors::One), \
                           testing::PrintToStringParamName())

}  // namespace zerva
