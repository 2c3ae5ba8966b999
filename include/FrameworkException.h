#pragma once

#include <string>

#include "framework/Export.h"
#include "framework/ZervaException.h"

/** What the configurator throws; caught by reference by the host. */
class ZERVA_EXPORT FrameworkException : public ZervaException {
 public:
  /** @param message what went wrong, for people. */
  explicit FrameworkException(const std::string& message);
  ~FrameworkException() override;
};
