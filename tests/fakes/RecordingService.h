#pragma once

#include <string>

#include "framework/Service.h"
#include "framework/ServiceRegistryIfc.h"

namespace zerva::fakes {

/** A service that records what is done with it: Service#1, ... */
class RecordingService : public Service {
 public:
  explicit RecordingService(const std::string& kind = "Service");
  ~RecordingService() override;

  void init(SvcRTEContext* context) override;
  void stop() override;
  void timerExpired(int timer) override;
  void messageReceived(const CommsChannelDataContainerMessage& message,
                       CommsChannelDataContainerMessage& reply) override;
  void run() override;
};

/** The service registry as a service, which records what is announced to it: RegistryService#1. */
class RecordingRegistryService : public RecordingService, public ServiceRegistryIfc {
 public:
  RecordingRegistryService();

  void registerInterface(const std::string& ifc, const std::string& channel) override;
  void unregisterInterface(const std::string& ifc, const std::string& channel) override;
  void registerProxy(const std::string& lib, const std::string& creator, const std::string& ifc,
                     const std::string& prot) override;
  void registerInvoker(const std::string& lib, const std::string& creator, const std::string& ifc,
                       const std::string& prot) override;
};

}  // namespace zerva::fakes
