#include "framework/ServiceRegistryIfc.h"
#include "rmi/InvokerOf.h"

namespace {

class ServiceRegistryInvoker final : public zerva::rmi::InvokerOf<ServiceRegistryIfc> {
 public:
  ServiceRegistryInvoker()
      : InvokerOf(ZERVA_METHOD(ServiceRegistryIfc::registerInterface),
                  ZERVA_METHOD(ServiceRegistryIfc::unregisterInterface),
                  ZERVA_METHOD(ServiceRegistryIfc::registerProxy),
                  ZERVA_METHOD(ServiceRegistryIfc::registerInvoker)) {}
};

}  // namespace

extern "C" ZERVA_EXPORT Invoker* createServiceRegistryInvoker() {
  return new ServiceRegistryInvoker;
}
