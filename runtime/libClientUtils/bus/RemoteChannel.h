#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "runtime/libClientUtils/Destination.h"
#include "runtime/libClientUtils/bus/Peer.h"

namespace zerva {

/** The way to a channel of another process, for whoever has just looked it up. */
class RemoteChannel final : public Destination {
 public:
  explicit RemoteChannel(std::shared_ptr<Peer> peer) : peer_(std::move(peer)) {}
  virtual ~RemoteChannel() = default;

  /** Another one for each look-up, so that a late reply is not taken for that of a later request.
   */
  std::uint64_t instance() const override { return instance_; }
  bool deliver(Envelope& envelope) override { return peer_->deliver(envelope); }
  bool waitsForCaller() const override { return false; }

 private:
  const std::shared_ptr<Peer> peer_;
  const std::uint64_t instance_ = newDestinationInstance();
};

/** The way to a channel that is served, but cannot be reached now. */
class UnreachableChannel final : public Destination {
 public:
  /** @param cause what a sender is told. */
  explicit UnreachableChannel(std::string cause) : cause_(std::move(cause)) {}
  virtual ~UnreachableChannel() = default;

  std::uint64_t instance() const override { return instance_; }
  bool deliver(Envelope& envelope) override {
    envelope.refusal = cause_;
    return false;
  }
  bool waitsForCaller() const override { return false; }

 private:
  const std::string cause_;
  const std::uint64_t instance_ = newDestinationInstance();
};

}  // namespace zerva
