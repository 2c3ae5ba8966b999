#pragma once

#include <stdexcept>
#include <string>

#include "framework/Service.h"
#include "rmi/InvokerOf.h"
#include "rmi/ProxyOf.h"

namespace zerva {

/** What the processes of a test call each other by. */
class WindSensor {
 public:
  virtual double speed(const std::string& station) = 0;

 protected:
  ~WindSensor() = default;
};

class WindSensorService final : public Service, public WindSensor {
 public:
  void init(SvcRTEContext* /*context*/) override {}
  double speed(const std::string& station) override {
    if (station.empty()) throw std::invalid_argument("which station?");
    return static_cast<double>(station.size()) / 2;
  }
};

class WindSensorProxy final : public rmi::ProxyOf<WindSensor> {
 public:
  double speed(const std::string& station) override {
    return call(ZERVA_METHOD(WindSensor::speed), station);
  }
};

class WindSensorInvoker final : public rmi::InvokerOf<WindSensor> {
 public:
  WindSensorInvoker() : InvokerOf(ZERVA_METHOD(WindSensor::speed)) {}
};

}  // namespace zerva
