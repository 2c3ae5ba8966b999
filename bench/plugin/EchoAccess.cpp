// What calls of the service go through.

#include "bench/plugin/Echo.h"
#include "rmi/InvokerOf.h"
#include "rmi/ProxyOf.h"

class EchoProxy : public zerva::rmi::ProxyOf<Echo> {
 public:
  std::string echo(const std::string& data) override {
    return call(ZERVA_METHOD(Echo::echo), data);
  }
  std::uint32_t sizeOf(const std::string& data) override {
    return call(ZERVA_METHOD(Echo::sizeOf), data);
  }
};

class EchoInvoker : public zerva::rmi::InvokerOf<Echo> {
 public:
  EchoInvoker() : InvokerOf(ZERVA_METHOD(Echo::echo), ZERVA_METHOD(Echo::sizeOf)) {}
};

extern "C" ZERVA_EXPORT Proxy* createEchoProxy() { return new EchoProxy; }

extern "C" ZERVA_EXPORT Invoker* createEchoInvoker() { return new EchoInvoker; }
