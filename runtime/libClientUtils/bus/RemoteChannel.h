#pragma once

#include <memory>
#include <string>

#include "runtime/libClientUtils/Destination.h"
#include "runtime/libClientUtils/bus/Peer.h"

namespace zerva {

/** The way to a channel of another process, for whoever has just looked it up. */
class RemoteChannel final : public Destination {
 public:
  /** @param server as `Destination::server` tells it. */
  RemoteChannel(std::shared_ptr<Peer> peer, std::string server)
      : peer_(std::move(peer)), server_(std::move(server)) {}
  virtual ~RemoteChannel() = default;

  std::string server() const override { return server_; }
  bool deliver(Envelope& envelope) override { return peer_->deliver(envelope); }
  bool waitsForCaller() const override { return false; }

 private:
  const std::shared_ptr<Peer> peer_;
  const std::string server_;
};

/** The way to a channel that is served, but cannot be reached now. */
class UnreachableChannel final : public Destination {
 public:
  /**
   * @param cause what a sender is told.
   * @param server as `Destination::server` tells it.
   */
  UnreachableChannel(std::string cause, std::string server)
      : cause_(std::move(cause)), server_(std::move(server)) {}
  virtual ~UnreachableChannel() = default;

  std::string server() const override { return server_; }
  bool deliver(Envelope& envelope) override {
    envelope.refusal = cause_;
    return false;
  }
  bool waitsForCaller() const override { return false; }

 private:
  const std::string cause_;
  const std::string server_;
};

}  // namespace zerva
