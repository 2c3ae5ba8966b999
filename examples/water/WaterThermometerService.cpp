// Measures the water, driven by a timer, and answers calls of its interface.

#include <unistd.h>

#include "SvcRTEContext.h"
#include "examples/water/WaterThermometer.h"
#include "framework/Service.h"

class WaterThermometerService : public Service, public WaterThermometer {
 public:
  void init(SvcRTEContext* context) override {
    context->startTimer(context->createTimer(this, 250));  // milliseconds
  }
  void timerExpired(int /*timer*/) override { degrees_ += degrees_ < 15 ? 0.1 : -1.0; }

  double degrees() override { return degrees_; }
  std::string station() const override { return "buoy 7"; }
  int process() const override { return getpid(); }

 private:
  double degrees_ = 14.0;
};

// What a directive names. The configurator owns what it gets, and deletes it at the end.
extern "C" ZERVA_EXPORT Service* createWaterThermometer() { return new WaterThermometerService; }
