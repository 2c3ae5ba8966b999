// Says what is to be expected, to whoever sends it a message. Made to be run lazily: it does not
// exist before its first message.

#include <cstdio>
#include <string>

#include "SvcRTEContext.h"
#include "examples/FoundService.h"
#include "examples/water/WaterThermometer.h"
#include "examples/wind/WindSensor.h"
#include "framework/CommsChannelDataContainerMessage.h"
#include "framework/Logging.h"
#include "framework/Service.h"

class ForecastService : public Service {
 public:
  void init(SvcRTEContext* context) override {
    // Whoever sent the first message waits for this to return: others are not asked here.
    context_ = context;
    logAppUni("Example", "ForecastService", 4, __LINE__, "forecast: somebody asks, here I am");
  }

  void messageReceived(const CommsChannelDataContainerMessage& /*message*/,
                       CommsChannelDataContainerMessage& reply) override {
    std::string wind = "no wind known";
    wind_.use(*context_, [&](WindSensor& sensor) {
      const WindReading reading = sensor.mean(5);
      wind = reading.speed > 8 ? "fresh, " : "calm, ";
      wind += amount(reading.speed) + " m/s in process " + std::to_string(reading.process);
    });
    std::string water = "no water known";
    water_.use(*context_, [&](WaterThermometer& thermometer) {
      const double degrees = thermometer.degrees();
      water = "water " + amount(degrees) + " degrees in process " +
              std::to_string(thermometer.process());
    });
    reply.setData(wind + "; " + water);
  }

 private:
  static std::string amount(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
  }

  SvcRTEContext* context_ = nullptr;
  FoundService<WindSensor> wind_{"forecast", "ExampleWindSensorIfc"};
  FoundService<WaterThermometer> water_{"forecast", "ExampleWaterThermometerIfc"};
};

extern "C" ZERVA_EXPORT Service* createForecast() { return new ForecastService; }
