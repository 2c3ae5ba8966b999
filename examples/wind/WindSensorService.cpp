// Measures the wind, driven by a timer, and answers calls of its interface. Made to be run
// multi-threaded: any number of calls, and the timer, may come at once, so it locks its data.

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <numeric>

#include "SvcRTEContext.h"
#include "examples/wind/WindSensor.h"
#include "framework/Service.h"

class WindSensorService : public Service, public WindSensor {
 public:
  void init(SvcRTEContext* context) override {
    measure();  // so that whoever calls first gets something
    context->startTimer(context->createTimer(this, 1000 / measuresASecond));
  }

  void timerExpired(int /*timer*/) override { measure(); }

  WindReading mean(int seconds) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    const int wanted = std::clamp(seconds, 1, keptSeconds) * measuresASecond;
    const int count = std::min(wanted, static_cast<int>(measured_.size()));
    const double sum = std::accumulate(measured_.end() - count, measured_.end(), 0.0);
    return {sum / count, "the pier", getpid()};
  }

 private:
  static constexpr int measuresASecond = 4;
  static constexpr int keptSeconds = 60;

  void measure() {
    const std::lock_guard<std::mutex> lock(mutex_);
    measured_.push_back(8.0 + 4.0 * std::sin(++measures_ / 5.0));
    if (measured_.size() > std::size_t{keptSeconds * measuresASecond}) measured_.pop_front();
  }

  std::mutex mutex_;
  std::deque<double> measured_;  // guarded by mutex_
  int measures_ = 0;             // guarded by mutex_
};

extern "C" ZERVA_EXPORT Service* createWindSensor() { return new WindSensorService; }
