#pragma once

#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/trace/TraceLine.h"

namespace zerva {

/** A trace that cannot be read; the text names the file, the line and the cause. */
class TraceError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/**
 * Reads a trace. A last line that is cut, as that of a process that was killed, is left out.
 *
 * @param in the file's text. @param name the file's name, for errors.
 * @returns its lines in the order of time.
 * @throws TraceError for a line that is none of a trace, for a first line of another kind of file,
 *     and for a newer version of the format.
 */
std::vector<TraceLine> readTrace(std::istream& in, const std::string& name);

/** As above, for a file. @throws TraceError also when it cannot be opened. */
std::vector<TraceLine> readTraceFile(const std::string& path);

}  // namespace zerva
