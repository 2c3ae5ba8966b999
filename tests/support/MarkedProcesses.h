#pragma once

#include <sys/types.h>

#include <string_view>
#include <vector>

namespace zerva {

/**
 * The running processes whose environment has an entry that begins with a text. One that has ended
 * and was not waited for yet is none of them; neither is the calling one.
 */
std::vector<pid_t> markedProcesses(std::string_view mark);

/** Kills them all; one that ends meanwhile is left alone. */
void killMarked(std::string_view mark);

}  // namespace zerva
