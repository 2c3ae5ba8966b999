#pragma once

#include <string>
#include <vector>

namespace zerva {

/**
 * Starts the program of a line, with the framework's version as its last argument. Success and
 * failure are logged.
 *
 * @param tokens the cut line; its keyword and its empty fields are left out.
 */
void startProcess(const std::vector<std::string>& tokens);

}  // namespace zerva
