#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace zerva {

/** @returns the start and the stop of a run as a picture: an SVG document. */
std::string timelineSvg(const RunModel& run);

/**
 * @returns the services that took longest to come up, the slowest first, at most so many. A service
 *     that came up in no time that a trace tells is not among them.
 */
std::vector<const ServiceRun*> slowestOf(const RunModel& run, std::size_t most);

}  // namespace zerva
