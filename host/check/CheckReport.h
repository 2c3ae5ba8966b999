#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/check/Finding.h"

namespace zerva {

/** The lines of the files that were checked: by file and number. */
using SourceLines = std::map<std::pair<std::string, std::size_t>, std::string>;

/** How findings are shown to a person. */
struct ReportStyle {
  /** With the line, and a mark below what is meant. */
  bool carets = false;
  bool colours = false;
};

/** @returns the style for standard output: a terminal's, or that of a file. */
ReportStyle styleOfStandardOutput();

/** @returns the findings for a person, and at the end how many there are. */
std::string reportAsText(const std::vector<Finding>& findings, const SourceLines& lines,
                         ReportStyle style);

/** @returns the findings for a program: one JSON object. */
std::string reportAsJson(const std::vector<Finding>& findings);

/** @returns the text with nothing in it that a terminal would obey. */
std::string printable(const std::string& text);

/** How many findings there are of one severity. */
std::size_t count(const std::vector<Finding>& findings, Severity severity);

}  // namespace zerva
