#pragma once

#include <exception>
#include <memory>
#include <string>

#include "framework/Export.h"

/**
 * Base of the framework's exceptions: a message that can travel to another process.
 */
class ZERVA_EXPORT ZervaException : public std::exception {
 public:
  /** @param message what went wrong, for people. */
  explicit ZervaException(const std::string& message);
  ZervaException(const ZervaException& other) noexcept;
  ZervaException& operator=(const ZervaException& other) noexcept;
  ~ZervaException() override;

  /** @returns the message; valid as long as the object and unchanged. */
  const char* what() const noexcept override;

  /** @returns the message as bytes that `deserialize` reads, independent of the machine. */
  virtual std::string serialize() const;

  /**
   * Takes over the message of serialised bytes.
   *
   * @param bytes what `serialize` gave; never trusted.
   * @returns false when they are not well formed; the object is then unchanged.
   */
  virtual bool deserialize(const std::string& bytes);

 private:
  struct State;
  std::shared_ptr<const State> state_;
};
