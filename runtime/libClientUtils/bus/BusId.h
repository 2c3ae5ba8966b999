#pragma once

#include <string>
#include <string_view>

namespace zerva {

/**
 * A process is called "<process id>-<16 hexadecimal digits>" on the bus. The digits are random, so
 * that no name is ever used twice, whatever becomes of process ids.
 */
std::string newBusId();

/** @returns whether a text can be such a name. */
bool isBusId(std::string_view text);

/** @returns the process id in such a name. */
int processOf(std::string_view id);

/** @returns how a process is shown to people: "process 1234". */
std::string describeProcess(std::string_view id);

}  // namespace zerva
