#include "framework/ZervaException.h"

#include "runtime/libExceptionPublisher/ExceptionBytes.h"

/** Shared by all copies and never changed, so that copying an exception in flight cannot fail. */
struct ZervaException::State {
  std::string message;
};

ZervaException::ZervaException(const std::string& message)
    : state_(std::make_shared<const State>(State{message})) {}

ZervaException::ZervaException(const ZervaException& other) noexcept = default;

ZervaException& ZervaException::operator=(const ZervaException& other) noexcept = default;

ZervaException::~ZervaException() = default;

const char* ZervaException::what() const noexcept { return state_->message.c_str(); }

std::string ZervaException::serialize() const {
  return zerva::encodeExceptionMessage(state_->message);
}

bool ZervaException::deserialize(const std::string& bytes) {
  auto message = zerva::decodeExceptionMessage(bytes);
  if (!message) return false;
  state_ = std::make_shared<const State>(State{std::move(*message)});
  return true;
}
