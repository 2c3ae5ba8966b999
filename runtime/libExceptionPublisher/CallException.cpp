#include "framework/CallException.h"

/** Shared by all copies and never changed, so that copying an exception in flight cannot fail. */
struct CallException::State {
  std::string ifc;
  std::string method;
  std::string channel;
  std::string cause;
};

CallException::CallException(const std::string& ifc, const std::string& method,
                             const std::string& channel, const std::string& cause)
    : ZervaException("call of " + ifc + "." + method + " on channel '" + channel +
                     "' failed: " + cause),
      state_(std::make_shared<const State>(State{ifc, method, channel, cause})) {}

CallException::CallException(const CallException& other) noexcept = default;

CallException& CallException::operator=(const CallException& other) noexcept = default;

CallException::~CallException() = default;

const std::string& CallException::getInterface() const noexcept { return state_->ifc; }

const std::string& CallException::getMethod() const noexcept { return state_->method; }

const std::string& CallException::getChannel() const noexcept { return state_->channel; }

const std::string& CallException::getCause() const noexcept { return state_->cause; }
