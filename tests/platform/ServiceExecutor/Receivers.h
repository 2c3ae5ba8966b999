#pragma once

#include <memory>
#include <string>
#include <utility>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Mailbox.h"
#include "tests/support/Barrier.h"

namespace zerva {

/** Holds whoever delivers to it back until its gate is opened. */
class SlowReceiver final : public RequestReceiver {
 public:
  explicit SlowReceiver(Gate& gate) : gate_(gate) {}
  bool receive(Envelope& /*envelope*/) override {
    gate_.wait();
    return false;
  }
  bool waitsForCaller() const override { return false; }
  const Executable* object() const override { return nullptr; }
  bool isMaking() const override { return false; }

 private:
  Gate& gate_;
};

/** Takes nothing any more, and its channel is closed. */
class LeavingReceiver final : public RequestReceiver {
 public:
  explicit LeavingReceiver(Mailbox& mailbox) : mailbox_(mailbox) {}
  bool receive(Envelope& /*envelope*/) override {
    mailbox_.close();
    return false;
  }
  bool waitsForCaller() const override { return false; }
  const Executable* object() const override { return nullptr; }
  bool isMaking() const override { return false; }

 private:
  Mailbox& mailbox_;
};

/** Another process, that serves all names. */
class OtherProcess final : public RemoteChannels, public Destination {
 public:
  explicit OtherProcess(std::string& asked) : asked_(asked) {}
  std::shared_ptr<Destination> find(const std::string& /*name*/) override {
    return {std::shared_ptr<void>(), this};
  }
  void servedMayHaveChanged(const std::string& /*name*/) override {}
  std::string server() const override { return "another process"; }
  bool deliver(Envelope& envelope) override {
    asked_ = envelope.to();
    Envelope(std::move(envelope)).ticket.fail("it is out");
    return true;
  }
  std::shared_ptr<Input> input() const override { return nullptr; }
  bool waitsForCaller() const override { return false; }

 private:
  std::string& asked_;
};

}  // namespace zerva
