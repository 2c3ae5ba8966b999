#pragma once

#include <string>

#include "framework/Export.h"

class ProtocolAdapter;

/**
 * Where the adapters of the known protocols are found. The host owns it and hands it to the
 * configurator; it outlives the configurator.
 */
class ZERVA_EXPORT AbstractProtocolRepository {
 public:
  /**
   * Finds the adapter of a protocol. Any thread may call it.
   *
   * @param protocol the protocol's name.
   * @returns the adapter, owned by the repository, or null when the protocol is not known. Whoever
   *     got one may keep it, and need not notice that another one is found later.
   */
  virtual ProtocolAdapter* findProtocolAdapter(std::string protocol) = 0;

 protected:
  ~AbstractProtocolRepository() = default;
};
