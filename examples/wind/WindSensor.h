#pragma once

#include <string>

/** The interface of a wind sensor: what its service implements and what its callers see. */
class WindSensor {
 public:
  /** @returns the mean speed of the wind over the last seconds, in metres a second. */
  virtual double speed(int seconds) = 0;

  /** @returns where the sensor stands. */
  virtual std::string station() const = 0;

 protected:
  ~WindSensor() = default;
};
