#pragma once

#include <string>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/** A thread that is monitored under a name. */
struct MonitoredThread {
  /** The system's id of the thread. */
  int threadId;
  std::string name;
  /** Whether it was last said to be alive. */
  bool alive;
};

/** What `TraceLog::logPMon_start` recorded. Any thread may call any operation. */
class ZERVA_EXPORT MonitoredThreads {
 public:
  /** @returns one entry a name, the name that was recorded first first. */
  static std::vector<MonitoredThread> list();

  /** Records a thread. A name that is recorded again stands for the thread given last. */
  static void record(const MonitoredThread& thread);
};

}  // namespace zerva
