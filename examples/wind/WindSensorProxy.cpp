// What callers of a wind sensor get: each method is one line.

#include "examples/wind/WindSensor.h"
#include "rmi/ProxyOf.h"

class WindSensorProxy : public zerva::rmi::ProxyOf<WindSensor> {
 public:
  double speed(int seconds) override { return call(ZERVA_METHOD(WindSensor::speed), seconds); }
  std::string station() const override { return call(ZERVA_METHOD(WindSensor::station)); }
};

extern "C" ZERVA_EXPORT Proxy* createWindSensorProxy() { return new WindSensorProxy; }
