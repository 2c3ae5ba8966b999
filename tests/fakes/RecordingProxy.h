#pragma once

#include <string>

#include "framework/Proxy.h"
#include "framework/ServiceRegistryIfc.h"

namespace zerva::fakes {

/** A proxy that records what is done with it: Proxy#1, ... */
class RecordingProxy : public Proxy {
 public:
  explicit RecordingProxy(const std::string& kind = "Proxy");
  ~RecordingProxy() override;

  void init(SvcRTEContext* context) override;
  void stop() override;
  void initialise(ProxyRequest* request) override;
};

/** The proxy of the service registry, which records what it is told: RegistryProxy#1. */
class RecordingRegistryProxy : public RecordingProxy, public ServiceRegistryIfc {
 public:
  RecordingRegistryProxy();

  void registerInterface(const std::string& ifc, const std::string& channel) override;
  void unregisterInterface(const std::string& ifc, const std::string& channel) override;
  void registerProxy(const std::string& lib, const std::string& creator, const std::string& ifc,
                     const std::string& prot) override;
  void registerInvoker(const std::string& lib, const std::string& creator, const std::string& ifc,
                       const std::string& prot) override;
};

}  // namespace zerva::fakes
