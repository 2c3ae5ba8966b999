#include "framework/CommsChannel.h"

#include <cstdint>
#include <utility>

#include "framework/CommsChannelDataContainerMessage.h"
#include "runtime/libClientUtils/ChannelDirectory.h"
#include "runtime/libClientUtils/ChannelState.h"
#include "runtime/libClientUtils/MessageState.h"
#include "runtime/libClientUtils/trace/TraceEvent.h"

using zerva::ChannelDirectory;
using zerva::Mailbox;

namespace {

void trace(zerva::TraceKind kind, const std::string& channel) {
  if (!zerva::Trace::on()) return;
  zerva::TraceEvent(kind).with(zerva::TraceKey::Channel, channel).write();
}

}  // namespace

CommsChannelIfc::~CommsChannelIfc() = default;

CommsChannel::CommsChannel(const std::string& name, CCInterceptorDispatcher* dispatcher)
    : state_(new State{std::make_shared<Mailbox>(name, dispatcher)}) {
  ChannelDirectory::instance().add(state_->mailbox);
  trace(zerva::TraceKind::ChannelOpened, name);
}

CommsChannel::~CommsChannel() {
  state_->mailbox->close();
  ChannelDirectory::instance().remove(*state_->mailbox);
  state_->mailbox->waitForDeliveries();
  trace(zerva::TraceKind::ChannelClosed, state_->mailbox->name());
}

const std::string& CommsChannel::getName() const { return state_->mailbox->name(); }

bool CommsChannel::send(CommsChannelDataContainerMessage& message) {
  auto& sent = message.state();
  sent.error = state_->mailbox->send(sent.channel, sent.callee, sent.data,
                                     static_cast<std::uint32_t>(sent.requestId));
  return sent.error.empty();
}

bool CommsChannel::sendTo(const std::string& channel, const std::string& data) {
  // Copied only where it has to wait.
  return state_->mailbox->send(channel, zerva::borrowed(data)).empty();
}

bool CommsChannel::receiveReply(CommsChannelDataContainerMessage& message, long requestId) {
  // Held here too, since the channel may be deleted while this thread waits.
  const std::shared_ptr<Mailbox> mailbox = state_->mailbox;
  const std::int64_t begin = zerva::Trace::beginOfCall();
  auto outcome = mailbox->awaitReply(static_cast<std::uint32_t>(requestId));
  auto& received = message.state();
  received.error = std::move(outcome.error);
  // A proxy counts its calls itself: it knows what they are.
  if (begin != 0 && received.callee == nullptr && received.channel != nullptr) {
    zerva::Trace::called(*received.channel, {}, {}, begin, received.error);
  }
  if (!received.error.empty()) {
    return false;
  }
  received.data = std::move(outcome.reply);
  return true;
}

bool CommsChannel::isServed(const std::string& channel) {
  return ChannelDirectory::instance().find(channel) != nullptr;
}

std::string CommsChannel::whoServes(const std::string& channel) {
  const auto destination = ChannelDirectory::instance().find(channel);
  return destination != nullptr ? destination->server() : std::string();
}

CommsChannel::State& CommsChannel::state() { return *state_; }
