#pragma once

#include "host/explain/LineExplanation.h"

namespace zerva {

class Outlook;

/** What a line does that brings a service up, at once or later. */
LineExplanation explainService(const ParsedLine& line, const Outlook& outlook);

}  // namespace zerva
