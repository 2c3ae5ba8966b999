#pragma once

#include <string>
#include <vector>

#include "host/trace/RunModel.h"
#include "host/trace/TraceLine.h"

namespace zerva {

/** @returns what the chart of a run shows, as JSON; docs/trace.md says how. */
std::string timelineJson(const RunModel& run);

/**
 * @returns a run in the format that browsers' viewers of traces open: a bar for each stage and each
 *     wait, on the thread on which it was.
 * @param lines those that the run was read from; they name the threads.
 */
std::string timelineTraceEvents(const RunModel& run, const std::vector<TraceLine>& lines);

}  // namespace zerva
