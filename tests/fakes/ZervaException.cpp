#include "framework/ZervaException.h"

struct ZervaException::State {
  std::string message;
};

ZervaException::ZervaException(const std::string& message)
    : state_(std::make_shared<const State>(State{message})) {}
ZervaException::ZervaException(const ZervaException& other) noexcept = default;
ZervaException& ZervaException::operator=(const ZervaException& other) noexcept = default;
ZervaException::~ZervaException() = default;

const char* ZervaException::what() const noexcept { return state_->message.c_str(); }

std::string ZervaException::serialize() const { return "message:" + state_->message; }

bool ZervaException::deserialize(const std::string& bytes) {
  const std::string beginning = "message:";
  if (bytes.compare(0, beginning.size(), beginning) != 0) return false;
  state_ = std::make_shared<const State>(State{bytes.substr(beginning.size())});
  return true;
}
