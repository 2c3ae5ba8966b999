#pragma once

#include <string>

/** The interface of a water thermometer: what its service implements and what its callers see. */
class WaterThermometer {
 public:
  /** @returns what was measured last, in degrees Celsius. */
  virtual double degrees() = 0;

  /** @returns where it measures. */
  virtual std::string station() const = 0;

  /** @returns the process that it runs in. */
  virtual int process() const = 0;

 protected:
  ~WaterThermometer() = default;
};
