#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** What counts as slower. */
struct ComparisonLimits {
  /** How much slower something may become. */
  double percent = 10;
  /** Differences up to so many nanoseconds do not count. */
  std::int64_t noise = 1'000'000;
};

/** How long something took in two starts, in nanoseconds; nothing where it was not there. */
struct ComparedTime {
  /** A service's name; empty for the whole start. */
  std::string name;
  std::optional<std::int64_t> before;
  std::optional<std::int64_t> after;
  /** Whether it became slower than allowed, or does not come up any more. */
  bool regressed = false;

  /** @returns by how many percent it became slower; 0 when one of the two is missing. */
  double change() const;
};

/** Two starts beside each other. */
struct Comparison {
  ComparisonLimits limits;
  /** The whole start first, then the services in the order of the second start. */
  std::vector<ComparedTime> times;

  bool regressed() const;
};

/**
 * Compares two starts. A service counts with the time that its own coming up took. One that came up
 * before, is in the second file too and does not come up there is a regression; one that the second
 * file does not have is not.
 */
Comparison compareStarts(const RunModel& before, const RunModel& after, ComparisonLimits limits);

std::string comparisonText(const Comparison& comparison);
std::string comparisonJson(const Comparison& comparison);

}  // namespace zerva
