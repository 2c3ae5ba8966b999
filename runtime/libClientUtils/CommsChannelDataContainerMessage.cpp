#include "framework/CommsChannelDataContainerMessage.h"

#include "runtime/libClientUtils/MessageState.h"
#include "runtime/libClientUtils/Spares.h"
#include "runtime/libClientUtils/Texts.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace {

constinit zerva::Spares spareStates(zerva::SpareKind::Message,
                                    [](void* state) { ::operator delete(state); });

}  // namespace

void* CommsChannelDataContainerMessage::State::operator new(std::size_t size) {
  static_assert(sizeof(State) >= sizeof(zerva::Spare));
  void* state = spareStates.take();
  if (state == nullptr) state = ::operator new(size);
#if defined(__SANITIZE_ADDRESS__)
  ASAN_UNPOISON_MEMORY_REGION(state, size);
#endif
  return state;
}

void CommsChannelDataContainerMessage::State::operator delete(void* state) {
#if defined(__SANITIZE_ADDRESS__)
  ASAN_POISON_MEMORY_REGION(state, sizeof(State));
  ASAN_UNPOISON_MEMORY_REGION(state, sizeof(zerva::Spare));
#endif
  spareStates.give(state);
}

CommsChannelDataContainerMessage::CommsChannelDataContainerMessage()
    : state_(std::make_unique<State>()) {}

CommsChannelDataContainerMessage::~CommsChannelDataContainerMessage() = default;

CommsChannelDataContainerMessage::CommsChannelDataContainerMessage(
    CommsChannelDataContainerMessage&& other) noexcept = default;

CommsChannelDataContainerMessage& CommsChannelDataContainerMessage::operator=(
    CommsChannelDataContainerMessage&& other) noexcept = default;

void CommsChannelDataContainerMessage::setChannel(const std::string& channel) {
  state_->channel = zerva::sharedName(channel);
}

const std::string& CommsChannelDataContainerMessage::getChannel() const {
  return zerva::textOf(state_->channel);
}

void CommsChannelDataContainerMessage::setData(const std::string& data) {
  state_->data = zerva::textOfBytes(data);
}

std::string CommsChannelDataContainerMessage::getData() const {
  return state_->data != nullptr ? *state_->data : std::string();
}

void CommsChannelDataContainerMessage::setRequestId(long requestId) {
  state_->requestId = requestId;
}

long CommsChannelDataContainerMessage::getRequestId() const { return state_->requestId; }

void CommsChannelDataContainerMessage::setError(const std::string& error) { state_->error = error; }

const std::string& CommsChannelDataContainerMessage::getError() const { return state_->error; }

CommsChannelDataContainerMessage::State& CommsChannelDataContainerMessage::state() {
  return *state_;
}

const CommsChannelDataContainerMessage::State& CommsChannelDataContainerMessage::state() const {
  return *state_;
}
