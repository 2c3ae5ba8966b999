// Notes the wind every second. It knows the interface of the sensor only: neither where the sensor
// runs nor which library its proxy comes from.

#include <exception>

#include "SvcRTEContext.h"
#include "examples/wind/WindSensor.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class StationLogService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    context_ = context;
    context_->startTimer(context_->createTimer(this, 1000));
  }

  void timerExpired(int /*timer*/) override {
    // Looked up when it is needed, and again as long as there is none.
    if (wind_ == nullptr) {
      wind_ = dynamic_cast<WindSensor*>(context_->findService("ExampleWindSensorIfc"));
    }
    if (wind_ == nullptr) {
      logAppUni("Example", "StationLogService", 3, __LINE__, "station log: no wind sensor yet");
      return;
    }
    try {
      logAppUni("Example", "StationLogService", 4, __LINE__, "station log: %.1f m/s at %s",
                wind_->speed(1), wind_->station().c_str());
    } catch (const std::exception& exception) {
      logAppUni("Example", "StationLogService", 3, __LINE__, "station log: %s", exception.what());
    }
  }

 private:
  SvcRTEContext* context_ = nullptr;
  WindSensor* wind_ = nullptr;  // the proxy; the configurator's
};

extern "C" ZERVA_EXPORT Service* createStationLog() { return new StationLogService; }
