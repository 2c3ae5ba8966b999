#pragma once

#include <string>

#include "tests/conformance/ConformanceTest.h"
#include "tests/support/TempDirectory.h"

namespace zerva::conformance {

/**
 * A test of directive files. The platform has no libraries, so that what creates services is seen
 * by its first steps.
 */
class DirectiveFileTest : public ConfiguratorTest {
 protected:
  DirectiveFileTest() { sut->services["ServiceRegistryIfc"] = nullptr; }

  void process(const std::string& text) {
    sut->processDirectives(directory.write("directives", text).string());
  }

  /** The lines of a service that is created now and whose library is not there. */
  static std::string createdExecutor(const std::string& dll, const std::string& lib) {
    const std::string cause = lib + ": no such library";
    return asText({progress("Opening Lib: '%s'", lib), dll + " = Dll(" + fakes::inQuotes(lib) + ")",
                   dll + ".error() -> " + fakes::inQuotes(cause),
                   error("Error opening library '%s' - '%s'", lib, cause),
                   printed("ServiceConfigurator::createServiceExecutor() Error opening library '" +
                           lib + "' - '" + cause + "'"),
                   "~" + dll});
  }

  /** The lines of a legacy service whose library is not there. */
  static std::string createdLegacy(const std::string& dll, const std::string& lib) {
    const std::string cause = lib + ": no such library";
    const std::string text = "Error opening library " + lib + " - " + cause;
    return asText({progress("%s", "Opening library - " + lib),
                   dll + " = Dll(" + fakes::inQuotes(lib) + ")",
                   dll + ".error() -> " + fakes::inQuotes(cause), error("%s", text),
                   printed("ServiceConfigurator::createService() " + text), "~" + dll});
  }

  static std::string creating(const std::string& lib, const std::string& creator,
                              const std::string& chan, const std::string& ifcs) {
    return progress("Creating Service. Lib: '%s' Creator: '%s' Chan: '%s' Ifc: '%s'", lib, creator,
                    chan, ifcs);
  }

  static std::string invalid(const std::string& line) {
    return error("%s", "ServiceConfigurator::processDirectives - invalid directive received: '" +
                           line + "'");
  }

  TempDirectory directory;
};

}  // namespace zerva::conformance
