#pragma once

#include <string>
#include <vector>

#include "host/live/Answers.h"
#include "host/trace/CallGraph.h"

namespace zerva {

/** @returns what is not known of a process and why, for people; empty for one that told all. */
std::string whatIsMissing(const Answer& answer);

/** @returns what a process told, and, when it did not tell all, which channels it serves. */
GraphSource graphSourceOf(const Answer& answer);

/**
 * @returns who called whom so far, with a box besides for each channel of a process that told
 *     nothing. @param registry whether with the service registry and its calls.
 */
CallGraph liveCallGraph(const std::vector<Answer>& answers, bool registry);

}  // namespace zerva
