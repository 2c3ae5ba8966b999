#pragma once

#include <cstdint>
#include <string>

/** What the services of the benchmarks do. */
class Echo {
 public:
  /** @returns what it is given. */
  virtual std::string echo(const std::string& data) = 0;

  /** @returns the size of what it is given. */
  virtual std::uint32_t sizeOf(const std::string& data) = 0;

 protected:
  ~Echo() = default;
};
