#include "host/check/LookedUp.h"

#include "host/trace/TraceReader.h"

namespace zerva {

LookedUp readLookedUp(const std::string& path) {
  LookedUp result;
  for (const TraceLine& line : readTraceFile(path)) {
    if (line.event == "lookup") result.interfaces.insert(line.text("interface"));
    if (line.event == "lost") result.lost += line.number("events");
  }
  return result;
}

}  // namespace zerva
