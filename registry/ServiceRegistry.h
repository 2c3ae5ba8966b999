#pragma once

#include <string>

#include "framework/CommsChannel.h"
#include "framework/Service.h"
#include "framework/ServiceRegistryIfc.h"
#include "registry/RegistryRecords.h"

namespace zerva {

/**
 * The service registry. It is called like any other service, and besides takes texts on its
 * channel: records that nobody answers, and queries.
 *
 * It knows itself from the start, since whoever wants to tell it anything has to find it first. It
 * calls nobody, so it may be run in every mode, lazily too.
 */
class ServiceRegistry final : public Service, public ServiceRegistryIfc {
 public:
  ServiceRegistry();

  /** Does nothing: the registry needs no context. */
  void init(SvcRTEContext* context) override;

  /**
   * Takes a text of the registry protocol; the reply is empty for a record.
   *
   * @throws ZervaException when the text is malformed; nothing is changed then.
   */
  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override;

  /** @throws ZervaException when a name or the channel holds a comma, which no reply could carry.
   */
  void registerInterface(const std::string& ifc, const std::string& channel) override;
  void unregisterInterface(const std::string& ifc, const std::string& channel) override;

  /** @throws ZervaException when a field holds a comma, which no reply could carry. */
  void registerProxy(const std::string& lib, const std::string& creator, const std::string& ifc,
                     const std::string& prot) override;
  /** As `registerProxy`. */
  void registerInvoker(const std::string& lib, const std::string& creator, const std::string& ifc,
                       const std::string& prot) override;

 private:
  std::string answer(const std::string& text);

  CommsChannel channel_;  // for asking who is served; nothing is sent from it
  RegistryRecords records_;
};

}  // namespace zerva
