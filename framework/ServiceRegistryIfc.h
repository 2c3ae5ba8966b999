#pragma once

#include <string>

#include "framework/Export.h"

/**
 * The service registry as its clients see it: implemented by the registry service and by its proxy.
 * All operations may be called from any thread. The order of the operations is part of the binary
 * interface.
 */
class ZERVA_EXPORT ServiceRegistryIfc {
 public:
  /**
   * Announces that an interface is served.
   *
   * @param ifc one interface name, or several separated by single blanks: each is announced.
   * @param channel the name of the channel on which requests for it are answered.
   */
  virtual void registerInterface(const std::string& ifc, const std::string& channel) = 0;

  /**
   * Takes an announcement back.
   *
   * @param ifc as announced.
   * @param channel as announced.
   */
  virtual void unregisterInterface(const std::string& ifc, const std::string& channel) = 0;

  /**
   * Records where the code of a proxy lives. The latest record for an interface holds.
   *
   * @param lib file name of the library.
   * @param creator name of the creator function that the library exports.
   * @param ifc name of the interface that the proxy stands for.
   * @param prot name of the protocol.
   */
  virtual void registerProxy(const std::string& lib, const std::string& creator,
                             const std::string& ifc, const std::string& prot) = 0;

  /**
   * Records where the code of an invoker lives. The latest record for an interface and protocol
   * holds. Parameters as for `registerProxy`.
   */
  virtual void registerInvoker(const std::string& lib, const std::string& creator,
                               const std::string& ifc, const std::string& prot) = 0;

 protected:
  ~ServiceRegistryIfc() = default;
};
