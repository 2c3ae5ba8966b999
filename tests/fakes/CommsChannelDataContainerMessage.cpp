#include "framework/CommsChannelDataContainerMessage.h"

#include <cstdint>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Recording.h"
#include "tests/fakes/Text.h"

using zerva::fakes::called;
using zerva::fakes::inQuotes;
using zerva::fakes::Objects;

struct CommsChannelDataContainerMessage::State {
  std::string channel;
  std::string data;
  long requestId = 0;
  std::string error;
};

CommsChannelDataContainerMessage::CommsChannelDataContainerMessage() : state_(new State()) {
  zerva::fakes::constructed(this, "Message", {});
}

CommsChannelDataContainerMessage::~CommsChannelDataContainerMessage() {
  if (Objects::died(this)) state_.reset();
}

CommsChannelDataContainerMessage::CommsChannelDataContainerMessage(
    CommsChannelDataContainerMessage&& other) noexcept
    : state_(std::move(other.state_)) {
  other.state_ = std::make_unique<State>();
  zerva::fakes::constructed(this, "Message", {Objects::name(&other)});
}

CommsChannelDataContainerMessage& CommsChannelDataContainerMessage::operator=(
    CommsChannelDataContainerMessage&& other) noexcept {
  called(this, "operator=", {Objects::name(&other)});
  std::swap(state_, other.state_);
  return *this;
}

void CommsChannelDataContainerMessage::setChannel(const std::string& channel) {
  called(this, "setChannel", {inQuotes(channel)});
  state_->channel = channel;
}

const std::string& CommsChannelDataContainerMessage::getChannel() const {
  called(this, "getChannel", {});
  return state_->channel;
}

void CommsChannelDataContainerMessage::setData(const std::string& data) {
  called(this, "setData", {inQuotes(data)});
  state_->data = data;
}

std::string CommsChannelDataContainerMessage::getData() const {
  called(this, "getData", {});
  return state_->data;
}

void CommsChannelDataContainerMessage::setRequestId(long requestId) {
  called(this, "setRequestId", {std::to_string(static_cast<std::uint32_t>(requestId))});
  state_->requestId = requestId;
}

long CommsChannelDataContainerMessage::getRequestId() const {
  called(this, "getRequestId", {});
  return state_->requestId;
}

void CommsChannelDataContainerMessage::setError(const std::string& error) {
  called(this, "setError", {inQuotes(error)});
  state_->error = error;
}

const std::string& CommsChannelDataContainerMessage::getError() const {
  called(this, "getError", {});
  return state_->error;
}
