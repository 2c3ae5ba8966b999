// Turns messages into calls of a wind sensor: each method is one line.

#include "examples/wind/WindSensor.h"
#include "rmi/InvokerOf.h"

class WindSensorInvoker : public zerva::rmi::InvokerOf<WindSensor> {
 public:
  WindSensorInvoker() : InvokerOf(ZERVA_METHOD(WindSensor::mean)) {}
};

extern "C" ZERVA_EXPORT Invoker* createWindSensorInvoker() { return new WindSensorInvoker; }
