#pragma once

#include <vector>

#include "host/check/Rule.h"

namespace zerva {

/** What is in the libraries that are named; says nothing where nobody looked into them. */
const std::vector<Rule>& libraryRules();

}  // namespace zerva
