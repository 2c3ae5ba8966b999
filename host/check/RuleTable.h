#pragma once

#include <string>
#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** @returns every rule that there is, in the order in which they are listed. */
std::vector<Rule> allRules();

/** @returns what all rules find, file by file, from the first line to the last. */
std::vector<Finding> lookOver(const CheckSubject& subject);

/** @returns the list of codes for a reader: severity, code, meaning, one a line. */
std::string describeRules();

}  // namespace zerva
