#pragma once

#include <string>
#include <vector>

#include "host/live/Answers.h"

namespace zerva {

/** @returns all processes and their services as lines for people. */
std::string statusTable(const std::vector<Answer>& answers);

/**
 * @returns all that is known of the services with a name, an interface or a channel; empty when
 *     there is none.
 */
std::string statusOf(const std::string& name, const std::vector<Answer>& answers);

/** @returns all of it as JSON. @param name only services with that name; empty for all. */
std::string statusJson(const std::string& name, const std::vector<Answer>& answers);

}  // namespace zerva
