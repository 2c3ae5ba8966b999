#include "host/SignalName.h"

#include <string.h>

namespace zerva {

std::string signalName(int number) {
  const char* name = sigabbrev_np(number);
  return name == nullptr ? "signal " + std::to_string(number) : std::string("SIG") + name;
}

}  // namespace zerva
