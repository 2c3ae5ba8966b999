#include "bench/ours/World.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "bench/ours/Libraries.h"
#include "bench/ours/TempDirectory.h"
#include "framework/Executable.h"
#include "runtime/libClientUtils/LibraryDirectories.h"
#include "runtime/libClientUtils/ReplyTimeout.h"
#include "runtime/libLoggingHandler/LogSettings.h"
#include "runtime/libServiceExecutor/Drain.h"

namespace zerva::bench {

namespace {

constexpr int kErrorsOnly = 2;
constexpr std::chrono::seconds kLongestDrain{60};
// Longer than a busy machine lets a process stand still.
constexpr std::chrono::seconds kLongestCall{60};

std::string numbered(const std::string& prefix, int number) {
  const std::string digits = std::to_string(number);
  return prefix + std::string(5 - digits.size(), '0') + digits;
}

}  // namespace

DirectiveFile::DirectiveFile(const std::string& directives) : directory_(makeTempDirectory()) {
  std::ofstream(path()) << directives;
}

DirectiveFile::~DirectiveFile() {
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

std::string DirectiveFile::path() const { return directory_ + "/services.directives"; }

PlatformSettings::PlatformSettings() {
  setReplyTimeout(kLongestCall);
  LogSettings::setDefaultLevel(kErrorsOnly);
  LibraryDirectories::set(
      {copiesDirectory(), buildDirectory() + "/plugins", buildDirectory() + "/lib"});
}

World::World(WorldParts parts)
    : configurator_(std::make_unique<ServiceConfigurator>(
          &channel_, &repository_, &protocols_, parts.dispatchers ? &messages : nullptr,
          parts.dispatchers ? &invocations : nullptr)) {
  if (parts.registry) process(registryLine());
}

Echo& World::find(const std::string& ifc) {
  auto* const echo = dynamic_cast<Echo*>(configurator_->findService(ifc));
  if (echo == nullptr) throw std::runtime_error("there is no " + ifc);
  return *echo;
}

void World::end() {
  configurator_->shutdown();
  if (!drainExecutors(kLongestDrain).complete) throw std::runtime_error("the drain did not end");
  configurator_.reset();
}

std::string registryLine() {
  return "service_instance: MT libServiceRegistry.so createServiceRegistry "
         "/zerva/serviceregistry ServiceRegistryIfc\n";
}

std::string interfaceName(int number) { return numbered("BenchEchoIfc", number); }

std::string channelName(int number) { return numbered("/bench/echo/", number); }

std::string accessLines(int services) {
  std::string lines;
  for (int i = 0; i < services; ++i) {
    lines += "invoker_info: libEchoAccess.so createEchoInvoker " + interfaceName(i) +
             " zerva_simple_rmi\nproxy_info: libEchoAccess.so createEchoProxy " + interfaceName(i) +
             " zerva_simple_rmi\n";
  }
  return lines;
}

std::string serviceLine(const std::string& keyword, const std::string& library, int number) {
  const bool legacy = keyword == "service_legacy:";
  return keyword + " " + library + " createEcho " + (legacy ? "" : channelName(number) + " ") +
         interfaceName(number) + "\n";
}

}  // namespace zerva::bench
