#include "framework/CommsChannel.h"

#include "framework/CCInterceptorDispatcher.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "tests/fakes/ChannelState.h"
#include "tests/fakes/Platform.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::called;
using zerva::fakes::inQuotes;
using zerva::fakes::Nested;
using zerva::fakes::Objects;
using zerva::fakes::Platform;

namespace {

void report(CCInterceptorDispatcher* dispatcher, const std::string& from, const std::string& to,
            const std::string& data, std::uint32_t id, bool reply, const std::string& error) {
  if (dispatcher == nullptr) return;
  const InterceptedMessage message{from, to, data.size(), id, reply, error};
  if (reply) {
    dispatcher->dispatchReceived(message);
  } else {
    dispatcher->dispatchSent(message);
  }
}

}  // namespace

CommsChannel::CommsChannel(const std::string& name, CCInterceptorDispatcher* dispatcher)
    : state_(new State()) {
  state_->name = name;
  state_->dispatcher = dispatcher;
  zerva::fakes::constructed(this, "CommsChannel", {inQuotes(name), Objects::name(dispatcher)});
  State::opened(state_.get());
}

CommsChannel::~CommsChannel() {
  if (!Objects::died(this)) return;
  State::ended(state_.get());
  state_.reset();
}

const std::string& CommsChannel::getName() const {
  called(this, "getName", {});
  return state_->name;
}

bool CommsChannel::send(CommsChannelDataContainerMessage& message) {
  called(this, "send", {Objects::name(&message)});
  const Nested nested;
  const std::string channel = message.getChannel();
  const std::string data = message.getData();
  const auto id = static_cast<std::uint32_t>(message.getRequestId());
  Outcome outcome;
  State* server = State::serving(channel);
  if (state_->closed) {
    outcome = Outcome{std::nullopt, "channel " + state_->name + " is closed", true};
  } else if (id != 0 && state_->outstanding.count(id) == 1) {
    message.setError("request id " + std::to_string(id) + " is outstanding already");
    return false;
  } else if (const auto reply = Platform::replyTo(channel, data)) {
    outcome = Outcome{reply, {}, true};
  } else if (server != nullptr) {
    server->requests.push_back(Waiting{state_->name, state_.get(), data, id});
  } else {
    outcome = Outcome{std::nullopt, "nobody serves channel " + channel, true};
  }
  report(state_->dispatcher, state_->name, channel, data, id, false, outcome.error);
  if (!outcome.error.empty()) message.setError(outcome.error);
  const bool sent = outcome.error.empty();
  if (id != 0) state_->outstanding[id] = outcome;
  return sent;
}

bool CommsChannel::sendTo(const std::string& channel, const std::string& data) {
  called(this, "sendTo", {inQuotes(channel), inQuotes(data)});
  State* server = State::serving(channel);
  if (state_->closed || server == nullptr) return false;
  server->requests.push_back(Waiting{state_->name, state_.get(), data, 0});
  return true;
}

bool CommsChannel::receiveReply(CommsChannelDataContainerMessage& message, long requestId) {
  const auto id = static_cast<std::uint32_t>(requestId);
  called(this, "receiveReply", {Objects::name(&message), std::to_string(id)});
  const Nested nested;
  const auto found = state_->outstanding.find(id);
  if (found == state_->outstanding.end()) {
    message.setError("request id " + std::to_string(id) + " is not outstanding");
    return false;
  }
  // Whoever serves the request does so now, since nobody else runs while the asker waits.
  if (!found->second.finished) Platform::settle();
  const Outcome outcome = state_->outstanding[id];
  state_->outstanding.erase(id);
  if (!outcome.finished || !outcome.reply) {
    message.setError(outcome.finished ? outcome.error : "no answer came in time");
    return false;
  }
  const std::string peer = message.getChannel();
  report(state_->dispatcher, peer, state_->name, *outcome.reply, id, true, {});
  message.setData(*outcome.reply);
  return true;
}

bool CommsChannel::isServed(const std::string& channel) {
  called(this, "isServed", {inQuotes(channel)});
  return State::serving(channel) != nullptr;
}

std::string CommsChannel::whoServes(const std::string& channel) {
  called(this, "whoServes", {inQuotes(channel)});
  const State* const server = State::serving(channel);
  return server != nullptr ? std::to_string(server->servedAs) : std::string();
}

CommsChannel::State& CommsChannel::state() { return *state_; }
