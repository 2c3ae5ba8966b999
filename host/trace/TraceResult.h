#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/trace/RunModel.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zerva {

/** With which code a verb that reads traces ends; part of the command line's interface. */
constexpr int kTraceDone = 0;
constexpr int kTraceFailed = 2;

/** Does what may fail of a file, which is told then. @returns the exit code. */
int guardedTraceWork(const std::function<int()>& work);

/**
 * Writes a result; what goes wrong is told.
 *
 * @param path empty or "-" for standard output.
 * @returns the exit code.
 */
int writeTraceResult(const std::string& text, const std::string& path);

/** Reads traces, and tells where events are missing. @throws TraceError as `readTraceFile`. */
std::vector<RunModel> readTraces(const std::vector<std::string>& paths);

/** The option that says where the result goes. */
CLI::Option* addTraceOutput(CLI::App& verb, std::string& path);

}  // namespace zerva
