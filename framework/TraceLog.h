#pragma once

#include "framework/Export.h"

/**
 * The trace of a process: marks that monitoring tools follow. There is one object a process, which
 * exists from before the first library until after the last. Any thread may call any operation.
 */
class ZERVA_EXPORT TraceLog {
 public:
  static TraceLog _instance;

  /**
   * Starts the monitoring of a thread under a name. It is recorded and seen in the log.
   *
   * @param threadId id of the thread, as `OSWrappers::curID` gives it.
   * @param name the name to monitor; copied.
   * @param argc number of arguments of the monitored program, 0 when they are not told.
   * @param argv those arguments, or null.
   * @param envp environment of the monitored program, or null.
   * @param flag whether the thread is alive from now on.
   */
  void logPMon_start(int threadId, const char* name, int argc, char** argv, char** envp, bool flag);
};
