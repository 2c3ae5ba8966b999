#pragma once

#include <string>

/** How high the water stands. */
class Tide {
 public:
  /** @returns metres above low water. */
  virtual double height() = 0;

  /** @returns where it is measured. */
  virtual std::string station() const = 0;

 protected:
  ~Tide() = default;
};
