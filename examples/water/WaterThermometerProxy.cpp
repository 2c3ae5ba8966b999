#include "examples/water/WaterThermometer.h"
#include "rmi/ProxyOf.h"

class WaterThermometerProxy : public zerva::rmi::ProxyOf<WaterThermometer> {
 public:
  double degrees() override { return call(ZERVA_METHOD(WaterThermometer::degrees)); }
  std::string station() const override { return call(ZERVA_METHOD(WaterThermometer::station)); }
  int process() const override { return call(ZERVA_METHOD(WaterThermometer::process)); }
};

extern "C" ZERVA_EXPORT Proxy* createWaterThermometerProxy() { return new WaterThermometerProxy; }
