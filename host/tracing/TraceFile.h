#pragma once

#include <string>

namespace zerva {

/**
 * While it lives, what happens in the process is written to a file, if that was asked for on the
 * command line or by `ZERVA_TRACE` of the environment.
 *
 * Made before any thread is, since the environment is changed: the processes that this one starts
 * are asked to do the same, when the name of the file says which process it is of.
 */
class TraceFile {
 public:
  /**
   * @param path the file, with the process's id in place of `%p`; empty for what the environment
   *     says, if that says anything.
   * @param about the directive file.
   */
  TraceFile(const std::string& path, const std::string& about);
  ~TraceFile();
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  /** @returns why nothing is written though it should be; empty when all is as it should be. */
  const std::string& error() const { return error_; }

  /** Writes out what happened up to now. Any thread. */
  static void writeOut();

 private:
  std::string error_;
};

}  // namespace zerva
