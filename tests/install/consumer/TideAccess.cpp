#include "Tide.h"
#include "rmi/InvokerOf.h"
#include "rmi/ProxyOf.h"

class TideProxy : public zerva::rmi::ProxyOf<Tide> {
 public:
  double height() override { return call(ZERVA_METHOD(Tide::height)); }
  std::string station() const override { return call(ZERVA_METHOD(Tide::station)); }
};

class TideInvoker : public zerva::rmi::InvokerOf<Tide> {
 public:
  TideInvoker() : InvokerOf(ZERVA_METHOD(Tide::height), ZERVA_METHOD(Tide::station)) {}
};

extern "C" ZERVA_EXPORT Proxy* createTideProxy() { return new TideProxy; }
extern "C" ZERVA_EXPORT Invoker* createTideInvoker() { return new TideInvoker; }
