#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "framework/ProxyRequestImpl.h"
#include "runtime/libClientUtils/ProtocolRepository.h"
#include "runtime/libClientUtils/bus/Bus.h"
#include "tests/plugins/relay/RelayProxy.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ExecutorWorld.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/** Calls a relay whose channel it knows. */
class RelayCaller {
 public:
  explicit RelayCaller(const std::string& ifc);

  /** @throws CallException as any proxy. */
  std::vector<int> pass(const std::vector<std::string>& way) { return proxy_.pass(way); }

 private:
  ScriptedContext context_;
  ProtocolRepository protocols_;
  CommsChannel channel_{"/test/caller", nullptr};
  ProxyRequestImpl request_;
  RelayProxy proxy_;
};

/** How a call ended that was made on another thread: "", or why it failed. */
using CallEnd = std::future<std::string>;

/**
 * Three hosts of one relay each, "First", "Second" and "Third", and this process, on one bus. The
 * registry is in the first. Replies are waited for without end, so that what fails does not fail
 * because time has passed.
 */
class RelayHosts : public testing::Test {
 protected:
  RelayHosts();

  /** Starts a host. @param more directives of its own. */
  void launch(const std::string& name, const std::string& more = "");

  /** Starts a host, and waits until its relay is up. */
  void start(const std::string& name, const std::string& more = "");

  /** @returns what starts a host that has directives of its own, as words of a command line. */
  std::string commandFor(const std::string& name, const std::string& more = "") const;

  /** Starts all three, and has each call each, so that all proxies are there. */
  void startAll();

  /** Starts those hosts that do not run, and looks whether each reaches each. */
  void expectAllWorkAgain();

  /** Looks whether each of two calls the other. */
  void expectCallsBetween(const std::string& one, const std::string& other);

  /** Kills a host and waits for its end. */
  void kill(const std::string& name);

  /** Ends a host in order. It must end with status 0. */
  void end(const std::string& name);

  /** Ends all hosts in order; they must leave nothing. */
  void endAll();

  /** Calls the first of a way with the rest, on a thread of its own. */
  static CallEnd call(std::vector<std::string> way);

  /** Waits until a host holds a call. */
  void awaitHeld(const std::string& name);

  /** The names of the hosts but one. */
  static std::vector<std::string> othersThan(const std::string& name);

  /** As a host is called in errors. */
  std::string process(const std::string& name) const;

  const std::filesystem::path& busDirectory() const { return busDirectory_; }

  ChildProcess& host(const std::string& name) { return *hosts_.at(name); }

  /** The keyword of the registry. */
  std::string registry = "service_instance: MT";

  /** Where programs and libraries of the hosts are; those of this build unless it is set. */
  std::map<std::string, std::filesystem::path> builds;

 private:
  const TempDirectory directory_;
  const std::filesystem::path busDirectory_ = directory_.file("bus");
  const Bus bus_{busDirectory_};
  std::map<std::string, std::unique_ptr<ChildProcess>> hosts_;
};

}  // namespace zerva
