#pragma once

#include <string>

#include "framework/Export.h"

/**
 * The way from a proxy to the service that it stands for. One object serves all threads that call
 * through the proxy at once.
 */
class ZERVA_EXPORT ProxyRequest {
 public:
  /** @returns the name of the service's channel, as given at construction. Never blocks. */
  virtual const std::string& getSvcChannel() const = 0;

  /** @returns the qualifying string, as given at construction. Never blocks. */
  virtual const std::string& getQualifier() const = 0;

  virtual ~ProxyRequest();
};
