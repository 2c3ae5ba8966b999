#pragma once

#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

#include "tests/conformance/ConformanceTest.h"

namespace zerva::conformance {

/**
 * Looks proxies up in a configurator that overrides nothing. The wall clock stands at 15 November
 * 2026, 08:51:55 local time, 4217 microseconds.
 */
class ProxyLookup : public ConfiguratorTest {
 protected:
  ProxyLookup() {
    setenv("TZ", "XXX-2", 1);
    tzset();
    // 06:51:55 in Greenwich.
    Platform::setWallClock(1794725515, 4217);
    plain = make<OpenConfigurator>(&channel, &repository, &protocols, &interceptors,
                                   &invokeInterceptors);
  }

  ~ProxyLookup() override {
    unsetenv("TZ");
    tzset();
  }

  static std::string called(const std::string& ifc) {
    return progress("findService called for interface: %s", ifc);
  }
  static std::string askedRepository(const std::string& ifc) {
    return "repository.findServiceProxy(" + fakes::inQuotes(ifc) + ")";
  }
  static std::string foundLocally() {
    return progress("Service Configurator: Service proxy found locally, returning");
  }

  static constexpr const char* kChannelName = "/svc/a_proxy-2026-11-15.08:51:55.  4217";

  /** The lines from taking the semaphore until the library is tried. */
  static std::string discovered() {
    return asText({progress("%s", "Proxy info found- Lib: libA.so Cr: createA Comm: /svc/a"),
                   progress("Service Configurator: Resolving symbol to proxy creator function")});
  }

  /** The lines of a proxy that is made. */
  static std::string made(const std::string& proxy, const std::string& qualifier = "",
                          const std::string& ifc = "FooIfc") {
    return locked(
        "proxySem",
        {discovered(), opened("Dll#1", "libA.so"), resolved("Dll#1", "createA"),
         progress("Service Configurator: Calling proxy creator function"), "createA()",
         "gettimeofday()", "localtime(1794725515)",
         "CommsChannel#1 = CommsChannel(" + fakes::inQuotes(kChannelName) + ", null)",
         progress("Service Configurator: Initialising proxy with request object"),
         "protocols.findProtocolAdapter(\"zerva_simple_rmi\")",
         "ProxyRequestImpl#1 = ProxyRequestImpl(CommsChannel#1, \"/svc/a\", " +
             fakes::inQuotes(ifc) + ", \"zerva_simple_rmi\", adapter, " +
             fakes::inQuotes(qualifier) + ", FrameworkContext)",
         proxy + ".initialise(ProxyRequestImpl#1)",
         "repository.addServiceProxy(" + proxy + ", Dll#1, CommsChannel#1, ProxyRequestImpl#1, " +
             fakes::inQuotes(ifc) + ")",
         progress("Service Configurator: Service proxy discovered & created, returning")});
  }

  std::unique_ptr<OpenConfigurator> plain;
};

}  // namespace zerva::conformance
