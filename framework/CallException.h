#pragma once

#include <memory>
#include <string>

#include "framework/Export.h"
#include "framework/ZervaException.h"

/**
 * A call through a proxy that failed. The message names all of the below: "call of I.M on channel
 * 'C' failed: cause".
 */
class ZERVA_EXPORT CallException : public ZervaException {
 public:
  /**
   * @param ifc the interface that was called.
   * @param method the method that was called.
   * @param channel the name of the service's channel.
   * @param cause why the call failed.
   */
  CallException(const std::string& ifc, const std::string& method, const std::string& channel,
                const std::string& cause);
  CallException(const CallException& other) noexcept;
  CallException& operator=(const CallException& other) noexcept;
  ~CallException() override;

  /** @returns the interface, method, channel and cause that it was made with. Never blocks. */
  const std::string& getInterface() const noexcept;
  const std::string& getMethod() const noexcept;
  const std::string& getChannel() const noexcept;
  const std::string& getCause() const noexcept;

 private:
  struct State;
  std::shared_ptr<const State> state_;
};
