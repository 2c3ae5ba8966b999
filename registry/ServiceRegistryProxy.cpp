#include <exception>

#include "framework/Logging.h"
#include "framework/ServiceRegistryIfc.h"
#include "rmi/ProxyOf.h"

namespace {

/**
 * Unlike other proxies it throws nothing: services come up, and their callers find them missing,
 * also when the registry is dead.
 */
class ServiceRegistryProxy final : public zerva::rmi::ProxyOf<ServiceRegistryIfc> {
 public:
  void registerInterface(const std::string& ifc, const std::string& channel) override {
    tell([&] { call(ZERVA_METHOD(ServiceRegistryIfc::registerInterface), ifc, channel); });
  }
  void unregisterInterface(const std::string& ifc, const std::string& channel) override {
    tell([&] { call(ZERVA_METHOD(ServiceRegistryIfc::unregisterInterface), ifc, channel); });
  }
  void registerProxy(const std::string& lib, const std::string& creator, const std::string& ifc,
                     const std::string& prot) override {
    tell([&] { call(ZERVA_METHOD(ServiceRegistryIfc::registerProxy), lib, creator, ifc, prot); });
  }
  void registerInvoker(const std::string& lib, const std::string& creator, const std::string& ifc,
                       const std::string& prot) override {
    tell([&] { call(ZERVA_METHOD(ServiceRegistryIfc::registerInvoker), lib, creator, ifc, prot); });
  }

 private:
  template <typename Call>
  static void tell(const Call& call) {
    try {
      call();
    } catch (const std::exception& exception) {
      logAppUni("Service Registry", "registry", 2, __LINE__, "the registry was not told: %s",
                exception.what());
    }
  }
};

}  // namespace

extern "C" ZERVA_EXPORT Proxy* createServiceRegistryProxy() { return new ServiceRegistryProxy; }
