#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/Mailbox.h"

namespace zerva {

/** Does something when it is handed a message, and does not take it. */
class RefusingReceiver final : public RequestReceiver {
 public:
  explicit RefusingReceiver(std::function<void()> work) : work_(std::move(work)) {}
  bool receive(Envelope& /*envelope*/) override {
    work_();
    return false;
  }
  bool waitsForCaller() const override { return false; }
  const Executable* object() const override { return nullptr; }
  bool isMaking() const override { return false; }

 private:
  const std::function<void()> work_;
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
