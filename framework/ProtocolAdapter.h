#pragma once

#include <string>

#include "framework/Export.h"

/**
 * Writes and reads calls in one protocol. Adapters hold no state of a call: one object serves all
 * threads at once.
 */
class ZERVA_EXPORT ProtocolAdapter {
 public:
  /** @returns the name of the protocol, for instance "zerva_simple_rmi". Never blocks. */
  virtual const std::string& getProtocol() const = 0;

  virtual ~ProtocolAdapter();
};
