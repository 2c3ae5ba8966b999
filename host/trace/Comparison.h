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
  /** Whether it may be there after all, since events are missing. */
  bool unknown = false;

  /** @returns by how many percent it became slower; 0 when one of the two is missing. */
  double change() const;
};

/** Two starts beside each other. */
struct Comparison {
  ComparisonLimits limits;
  /** Whether the second start was over before its trace ended. */
  bool finished = true;
  /** How many events are missing in each; services that may be missing for that are not judged. */
  std::int64_t lostBefore = 0;
  std::int64_t lostAfter = 0;
  /** The whole start first, then the services in the order of the second start. */
  std::vector<ComparedTime> times;

  bool regressed() const;
};

/**
 * Compares two starts. A service counts with the time that its own coming up took; of several with
 * the same name the first is compared with the first. One that came up before and does not any more
 * is a regression, whether it failed or is not declared any more; not so a lazy one that nobody
 * asked for. So is a second start that was cut off.
 *
 * @throws std::invalid_argument when the first start was cut off, or both that and loss may be why
 *     the second one does not end.
 */
Comparison compareStarts(const RunModel& before, const RunModel& after, ComparisonLimits limits);

std::string comparisonText(const Comparison& comparison);
std::string comparisonJson(const Comparison& comparison);

}  // namespace zerva
