#pragma once

#include <cstdint>
#include <set>
#include <string>

namespace zerva {

/** What the trace of a run tells of lookups. */
struct LookedUp {
  /** The interfaces that somebody looked up. */
  std::set<std::string> interfaces;
  /** How many events are missing; lookups may be among them. */
  std::int64_t lost = 0;
};

/** Reads a trace. @throws TraceError as `readTraceFile`. */
LookedUp readLookedUp(const std::string& path);

}  // namespace zerva
