#pragma once

#include <string>
#include <vector>

namespace zerva {

/**
 * Compares what a program wrote with what it was to write.
 *
 * A line "..." stands for any number of lines. In a line, <number>, <time> and <any> stand for a
 * number, the time of a log line and any text; <error> stands for what comes before the text of an
 * error that the configurator logs.
 *
 * @returns an empty text when they agree; otherwise where they part.
 */
std::string compareLines(const std::vector<std::string>& expected, const std::string& written);

/**
 * Looks whether a program wrote these lines, in this order, whatever else it wrote before, between
 * and after them: for one of several processes that write to the same place.
 *
 * @returns an empty text when it did; otherwise the first that is missing.
 */
std::string lookForLines(const std::vector<std::string>& expected, const std::string& written);

}  // namespace zerva
