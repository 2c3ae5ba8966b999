#pragma once

#include <memory>

#include "framework/Export.h"

/**
 * A process that this one started. It is started without a shell, in a process group of its own,
 * with default signal dispositions, an empty signal mask and no descriptors but the standard three.
 *
 * The object may be forgotten: the process is reaped when it ends, whoever holds the object, and
 * the platform keeps a list of what it started. Deleting the object does not end the process.
 */
class ZERVA_EXPORT Process {
 public:
  /**
   * Starts a program. Returns when it runs or has failed to.
   *
   * @param argc number of arguments.
   * @param argv the program (searched in PATH when it holds no slash) and its arguments, ended by
   *     null; used during the call only.
   * @param envp the environment, ended by null; used during the call only.
   * @param directory where the program starts; null for the caller's directory.
   */
  Process(int argc, char** argv, char** envp, char* directory);
  virtual ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  /** @returns the process's id, greater than 0; or 0 when the program could not be executed. */
  int ID();

 private:
  struct State;
  std::unique_ptr<State> state_;
};
