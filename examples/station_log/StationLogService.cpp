// Notes wind and water, driven by a timer. Where the two are measured is no matter of its own.

#include "SvcRTEContext.h"
#include "examples/FoundService.h"
#include "examples/water/WaterThermometer.h"
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
    wind_.use(*context_, [](WindSensor& wind) {
      const WindReading reading = wind.mean(1);
      logAppUni("Example", "StationLogService", 4, __LINE__,
                "station log: %.1f m/s at %s, measured in process %d", reading.speed,
                reading.station.c_str(), reading.process);
    });
    water_.use(*context_, [](WaterThermometer& water) {
      logAppUni("Example", "StationLogService", 4, __LINE__,
                "station log: water %.1f degrees at %s, measured in process %d", water.degrees(),
                water.station().c_str(), water.process());
    });
  }

 private:
  SvcRTEContext* context_ = nullptr;
  FoundService<WindSensor> wind_{"station log", "ExampleWindSensorIfc"};
  FoundService<WaterThermometer> water_{"station log", "ExampleWaterThermometerIfc"};
};

extern "C" ZERVA_EXPORT Service* createStationLog() { return new StationLogService; }
