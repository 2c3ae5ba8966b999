#pragma once

#include <chrono>
#include <string>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zerva {

/** The option `--bus` of a verb that looks at a bus. */
CLI::Option* addBusOption(CLI::App& command, std::string& directory);

/**
 * An option that is a time in seconds, fractions allowed.
 *
 * @param time gets it; it is longer than zero.
 */
CLI::Option* addSeconds(CLI::App& command, const char* name, std::chrono::milliseconds& time,
                        const char* help);

}  // namespace zerva
