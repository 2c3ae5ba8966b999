#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zerva {

/** A line of a trace file; docs/trace.md says what it means. */
struct TraceLine {
  std::string event;
  /** Nanoseconds of the monotonic clock. */
  std::int64_t t = 0;
  int thread = 0;
  std::string threadName;
  /** For whom; empty when that is not known. */
  std::string service;
  /** The fields that only some events have. */
  std::map<std::string, std::string> texts;
  std::map<std::string, std::int64_t> numbers;
  /** Of `calls`: the last nanosecond that counts as the same duration, and how many took that. */
  std::vector<std::pair<std::int64_t, std::uint64_t>> times;

  /** @returns the field; empty or 0 when it is not there. */
  std::string text(const std::string& name) const;
  std::int64_t number(const std::string& name) const;

  /** @returns when it began: `t` without its duration. */
  std::int64_t begin() const { return t - number("duration"); }
};

}  // namespace zerva
