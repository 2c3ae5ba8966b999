// Measures the wind, driven by a timer, and answers calls of its interface.

#include <algorithm>
#include <cmath>
#include <vector>

#include "SvcRTEContext.h"
#include "examples/wind/WindSensor.h"
#include "framework/Service.h"
#include "framework/ZervaException.h"

class WindSensorService : public Service, public WindSensor {
 public:
  void init(SvcRTEContext* context) override {
    context->startTimer(context->createTimer(this, periodInMilliseconds));
  }

  void timerExpired(int /*timer*/) override {
    measured_.push_back(8.0 + 4.0 * std::sin(static_cast<double>(measured_.size()) / 5));
  }

  double speed(int seconds) override {
    const std::size_t wanted = static_cast<std::size_t>(seconds) * 1000 / periodInMilliseconds;
    const std::size_t count = std::min(wanted, measured_.size());
    if (count == 0) throw ZervaException("nothing was measured yet");
    double sum = 0;
    for (auto value = measured_.rbegin(); value != measured_.rbegin() + static_cast<long>(count);
         ++value) {
      sum += *value;
    }
    return sum / static_cast<double>(count);
  }

  std::string station() const override { return "the pier"; }

 private:
  static constexpr int periodInMilliseconds = 250;
  std::vector<double> measured_;
};

extern "C" ZERVA_EXPORT Service* createWindSensor() { return new WindSensorService; }
