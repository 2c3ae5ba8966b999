#pragma once

#include "host/explain/LineExplanation.h"

namespace zerva {

class Outlook;

/** What a line does that starts a program. */
LineExplanation explainProgram(const ParsedLine& line, const Outlook& outlook);

}  // namespace zerva
