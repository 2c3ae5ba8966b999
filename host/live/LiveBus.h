#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "runtime/libClientUtils/bus/Bus.h"

namespace zerva {

/** The bus as somebody sees it who looks at what others run. Used by one thread. */
class LiveBus {
 public:
  /**
   * Joins the bus.
   *
   * @param directory where it is; when empty, where `ZERVA_BUS` of the environment says.
   * @param patience how long a request waits for its answer.
   * @throws std::runtime_error with what is wrong: nobody says which bus, there is none, or it
   *     cannot be used. A directory that is missing is not made.
   */
  LiveBus(const std::string& directory, std::chrono::milliseconds patience);

  /** @returns the other processes. */
  std::vector<BusProcess> processes() const { return bus_.processes(); }

  const std::string& directory() const { return bus_.directory(); }

 private:
  const Bus bus_;
};

}  // namespace zerva
