#pragma once

#include "host/explain/LineExplanation.h"

namespace zerva {

class Outlook;

/** What a line does that records where the code for calls of an interface is. */
LineExplanation explainRecord(const ParsedLine& line, const Outlook& outlook);

}  // namespace zerva
