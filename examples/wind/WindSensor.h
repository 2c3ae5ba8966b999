#pragma once

#include <string>
#include <tuple>

/** What a wind sensor says. */
struct WindReading {
  double speed = 0;  // metres a second
  std::string station;
  int process = 0;  // the one that measured it
  static constexpr auto fields =
      std::make_tuple(&WindReading::speed, &WindReading::station, &WindReading::process);
};

/** The interface of a wind sensor: what its service implements and what its callers see. */
class WindSensor {
 public:
  /** @returns the mean of the last seconds, as far as they were measured; of at least one. */
  virtual WindReading mean(int seconds) = 0;

 protected:
  ~WindSensor() = default;
};
