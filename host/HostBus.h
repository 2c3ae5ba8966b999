#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "runtime/libClientUtils/bus/Bus.h"

namespace zerva {

class EndRequest;

/**
 * The bus of a host. Which one it is stands in the environment from here on, so that the processes
 * that the host starts are on the same.
 *
 * Made before any thread is, since the environment is changed; used by one thread.
 */
class HostBus {
 public:
  /**
   * Opens the bus.
   *
   * @param directory where it is; when empty, where `ZERVA_BUS` of the environment says; when that
   *     says nothing either, a new directory of the user's own, that is removed at the end.
   * @throws std::runtime_error with directory and cause when the bus that was asked for cannot be
   *     opened. When nobody asked for one, the host goes without; see `whyNone`.
   */
  explicit HostBus(const std::string& directory);

  /** Closes the bus. */
  ~HostBus();
  HostBus(const HostBus&) = delete;
  HostBus& operator=(const HostBus&) = delete;

  /** @returns why there is no bus; empty when there is one. */
  const std::string& whyNone() const { return whyNone_; }

  /** As `Bus::closeToOutside`. */
  void closeToOutside(const std::string& but);

  /**
   * Waits until some process serves a channel.
   *
   * @param end ends the wait when it is made.
   * @returns whether the channel is served.
   */
  static bool await(const std::string& channel, std::chrono::milliseconds longest, EndRequest& end);

  /**
   * Removes a directory of its own without closing the bus: for a process that ends at once. Any
   * thread.
   */
  void removeOwnDirectory() const;

 private:
  void openOwn();

  std::string ownDirectory_;
  std::string whyNone_;
  std::unique_ptr<Bus> bus_;
};

}  // namespace zerva
