#pragma once

#include <memory>
#include <string>

#include "ServiceConfigurator.h"
#include "ServiceRepository.h"
#include "bench/plugin/Echo.h"
#include "framework/CCInterceptorDispatcher.h"
#include "framework/CommsChannel.h"
#include "framework/InvokeInterceptorDispatcher.h"
#include "runtime/libClientUtils/ProtocolRepository.h"

namespace zerva::bench {

/** A file of directives that goes when the object does. */
class DirectiveFile {
 public:
  explicit DirectiveFile(const std::string& directives);
  ~DirectiveFile();
  DirectiveFile(const DirectiveFile&) = delete;
  DirectiveFile& operator=(const DirectiveFile&) = delete;

  std::string path() const;

 private:
  const std::string directory_;
};

/** Sets the platform up: errors only in the log, and where the libraries are. */
struct PlatformSettings {
  PlatformSettings();
};

/** What a configurator of a benchmark is given. */
struct WorldParts {
  /** Whether there is a registry in this process; else it is found in another. */
  bool registry = true;
  /** Whether there are dispatchers for interceptors, as a host has them. */
  bool dispatchers = true;
};

/**
 * A host by hand: a configurator on the real platform, with its registry, and nothing that `zerva
 * run` adds for people to read. What is logged is errors. One at a time in a process.
 */
class World {
 public:
  explicit World(WorldParts parts = {});
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  /** Does what directives say. */
  void process(const DirectiveFile& file) { configurator_->processDirectives(file.path()); }
  void process(const std::string& directives) { process(DirectiveFile(directives)); }

  SvcRTEContext& context() { return *configurator_; }
  CommsChannel& channel() { return channel_; }

  /** @returns the service's proxy. @throws std::runtime_error when there is none. */
  Echo& find(const std::string& ifc);

  /** Stops, waits and deletes as a host does. @throws std::runtime_error when it does not end. */
  void end();

  // Told of messages and of calls, where there are dispatchers.
  CCInterceptorDispatcher messages;
  InvokeInterceptorDispatcher invocations;

 private:
  const PlatformSettings settings_;
  ServiceRepository repository_;
  ProtocolRepository protocols_;
  CommsChannel channel_{"/bench/host", nullptr};
  std::unique_ptr<ServiceConfigurator> configurator_;
};

/** @returns the line of the registry. */
std::string registryLine();

/** @returns the name of the interface of a service, by its number. */
std::string interfaceName(int number);

/** @returns the name of its channel. */
std::string channelName(int number);

/** @returns the lines that say where the code for calls of so many services is. */
std::string accessLines(int services);

/**
 * @param keyword of a directive, with its mode.
 * @param library file name of the library.
 * @returns the line of a service.
 */
std::string serviceLine(const std::string& keyword, const std::string& library, int number);

}  // namespace zerva::bench
