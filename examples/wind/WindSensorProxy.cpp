// What callers of a wind sensor get: each method is one line.

#include "examples/wind/WindSensor.h"
#include "rmi/ProxyOf.h"

class WindSensorProxy : public zerva::rmi::ProxyOf<WindSensor> {
 public:
  WindReading mean(int seconds) override { return call(ZERVA_METHOD(WindSensor::mean), seconds); }
};

extern "C" ZERVA_EXPORT Proxy* createWindSensorProxy() { return new WindSensorProxy; }
