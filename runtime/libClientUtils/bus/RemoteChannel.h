#pragma once

#include <memory>
#include <string>
#include <utility>

#include "runtime/libClientUtils/Destination.h"
#include "runtime/libClientUtils/bus/NameTable.h"
#include "runtime/libClientUtils/bus/Peer.h"

namespace zerva {

/** @returns who serves a channel, as `Destination::server` tells it. */
inline std::string describe(const NameTable::Server& server) {
  return *server.id + " since " + std::to_string(server.since);
}

/** The way to a channel of another process, for whoever has just looked it up. */
class RemoteChannel final : public Destination {
 public:
  /** @param server whom it was found with. */
  RemoteChannel(std::shared_ptr<Peer> peer, NameTable::Server server)
      : peer_(std::move(peer)), server_(std::move(server)) {}
  virtual ~RemoteChannel() = default;

  std::string server() const override { return describe(server_); }
  bool deliver(Envelope& envelope) override { return peer_->deliver(envelope); }
  std::shared_ptr<Input> input() const override { return peer_->input(); }
  bool waitsForCaller() const override { return false; }

 private:
  const std::shared_ptr<Peer> peer_;
  const NameTable::Server server_;
};

/** The way to a channel that is served, but cannot be reached now. */
class UnreachableChannel final : public Destination {
 public:
  /**
   * @param cause what a sender is told.
   * @param server whom it was found with.
   */
  UnreachableChannel(std::string cause, NameTable::Server server)
      : cause_(std::move(cause)), server_(std::move(server)) {}
  virtual ~UnreachableChannel() = default;

  std::string server() const override { return describe(server_); }
  bool deliver(Envelope& envelope) override {
    envelope.refusal = cause_;
    return false;
  }
  std::shared_ptr<Input> input() const override { return nullptr; }
  bool waitsForCaller() const override { return false; }

 private:
  const std::string cause_;
  const NameTable::Server server_;
};

}  // namespace zerva
