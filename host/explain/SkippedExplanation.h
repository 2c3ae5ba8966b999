#pragma once

#include "host/explain/LineExplanation.h"

namespace zerva {

/** What becomes of a line that asks for nothing, or for something that nobody knows. */
LineExplanation explainSkipped(const ParsedLine& line);

}  // namespace zerva
