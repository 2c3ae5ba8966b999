#pragma once

#include <string>

#include "framework/Export.h"
#include "framework/ZervaException.h"

/** Bytes that came from outside are not what was expected; the message says what is wrong. */
class ZERVA_EXPORT DecodeException : public ZervaException {
 public:
  /** @param message what is wrong with the bytes, for people. */
  explicit DecodeException(const std::string& message);
  DecodeException(const DecodeException& other) noexcept;
  DecodeException& operator=(const DecodeException& other) noexcept;
  ~DecodeException() override;
};
