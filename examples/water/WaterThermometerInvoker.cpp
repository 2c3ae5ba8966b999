#include "examples/water/WaterThermometer.h"
#include "rmi/InvokerOf.h"

class WaterThermometerInvoker : public zerva::rmi::InvokerOf<WaterThermometer> {
 public:
  WaterThermometerInvoker()
      : InvokerOf(ZERVA_METHOD(WaterThermometer::degrees),  //
                  ZERVA_METHOD(WaterThermometer::station),
                  ZERVA_METHOD(WaterThermometer::process)) {}
};

extern "C" ZERVA_EXPORT Invoker* createWaterThermometerInvoker() {
  return new WaterThermometerInvoker;
}
