// Shows the wind, driven by a timer. The demo runs it in another process than the sensor; it knows
// nothing of that.

#include <unistd.h>

#include "SvcRTEContext.h"
#include "examples/FoundService.h"
#include "examples/wind/WindSensor.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class HarbourDisplayService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    context_ = context;
    context_->startTimer(context_->createTimer(this, 1000));
  }

  void timerExpired(int /*timer*/) override {
    wind_.use(*context_, [](WindSensor& wind) {
      const WindReading reading = wind.mean(3);
      logAppUni("Example", "HarbourDisplayService", 4, __LINE__,
                "harbour display in process %d: %.1f m/s at %s, measured in process %d", getpid(),
                reading.speed, reading.station.c_str(), reading.process);
    });
  }

 private:
  SvcRTEContext* context_ = nullptr;
  FoundService<WindSensor> wind_{"harbour display", "ExampleWindSensorIfc"};
};

extern "C" ZERVA_EXPORT Service* createHarbourDisplay() { return new HarbourDisplayService; }
