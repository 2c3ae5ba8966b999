#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/** What a command printed, and how it ended. */
struct Seen {
  int code;
  std::string output;
  std::string errors;
};

/** Hosts on a bus of the test's own, and somebody who looks at them from outside. */
class HostsOnABus : public testing::Test {
 protected:
  HostsOnABus();

  /** Starts a host that tells how it is. @param lines its file. */
  ChildProcess& start(const std::string& lines, std::vector<std::string> more = {"--status"},
                      std::map<std::string, std::string> environment = {});

  /** As `start`, and waits until all its lines are through. */
  ChildProcess& startAll(const std::string& lines, std::vector<std::string> more = {"--status"});

  /** Runs `zerva VERB` on the bus until it ends. @param words behind it. */
  Seen zerva(const std::string& verb, std::vector<std::string> words = {}) const;

  /** @returns what `zerva status --json` tells; a process that is not there is null. */
  nlohmann::json status(const ChildProcess& process) const;

  /** @returns the service with an interface, as `status`; null when there is none. */
  nlohmann::json service(const ChildProcess& process, const std::string& interface) const;

  /** Waits until a member of a service's status has a value. */
  bool waitForService(const ChildProcess& process, const std::string& interface,
                      const std::string& member, const nlohmann::json& value) const;

  const TempDirectory directory;
  const std::string bus = directory.file("bus");
  const std::string build = ZERVA_BUILD_DIRECTORY;
  std::vector<std::unique_ptr<ChildProcess>> hosts;
};

inline const std::string kRegistryLine =
    "service_instance: MT libServiceRegistry.so createServiceRegistry /zerva/serviceregistry "
    "ServiceRegistryIfc\n";
inline const std::string kPlainLine =
    "service_instance: ST libPlain.so createPlain /test/plain PlainIfc\n";

}  // namespace zerva
