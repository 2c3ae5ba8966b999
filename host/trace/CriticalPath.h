#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** A piece of the time of a start, and who used it. */
struct PathStep {
  Interval when;
  /** The service, by its place in the run; nothing for the host itself. */
  std::optional<std::size_t> service;
  /** What was done; nothing when it waited. */
  std::optional<Stage> stage;
  /** What it waited for. */
  std::string waitedFor;
};

/**
 * @returns the steps that fill the time from the beginning to the end of a start, without gaps. A
 *     wait for a service that was being made meanwhile is that service's time.
 */
std::vector<PathStep> criticalPath(const RunModel& run);

/** How much of a start a service has on the critical path. */
struct PathShare {
  std::optional<std::size_t> service;
  std::int64_t time = 0;
};

/** @returns who has how much of the path, the largest first. */
std::vector<PathShare> sharesOf(const std::vector<PathStep>& path);

}  // namespace zerva
