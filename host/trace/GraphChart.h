#pragma once

#include <string>

#include "host/trace/CallGraph.h"

namespace zerva {

/**
 * @returns who called whom as a picture, an SVG document: a box for each, with the interfaces that
 *     it declares, and arrows with the number of calls, the failures and the median time.
 */
std::string callGraphSvg(const CallGraph& graph);

}  // namespace zerva
