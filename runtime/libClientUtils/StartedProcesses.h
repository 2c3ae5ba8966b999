#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/** A process that this one started. */
struct StartedProcess {
  int id;
  /** The program as it was named. */
  std::string program;
  bool running;
  /** What it ended with; -1 when it runs, when a signal ended it, or when that is not known. */
  int exitStatus;
  /** The signal that ended it; 0 when it runs or none did. */
  int signal;
};

/** The processes that `Process` objects started. Any thread may call any operation. */
class ZERVA_EXPORT StartedProcesses {
 public:
  /**
   * @returns those that run, and those that have ended and whose `Process` object lives; the one
   *     that was started first first.
   */
  static std::vector<StartedProcess> list();

  /**
   * Ends what runs: SIGTERM to each process, the one that was started last first; when all of them
   * have ended or the time is over, SIGKILL to their process groups with all that is left in them.
   * Waits until they are reaped.
   *
   * @param grace how long they may take after SIGTERM.
   * @returns those that ran, in the order in which they were started, and how each ended. One that
   *     the system could not end within some seconds after SIGKILL is said to be running.
   */
  static std::vector<StartedProcess> terminateAll(std::chrono::milliseconds grace);

  /** @returns how many `Process` objects live, those that started nothing included. */
  static std::size_t objects();
};

}  // namespace zerva
