#pragma once

#include "framework/Executable.h"
#include "framework/Export.h"
#include "framework/Threadable.h"

/**
 * What a service library's creator function returns: `extern "C" Service* createX()`.
 *
 * A service with an executor implements `init` and what it needs of `messageReceived` and
 * `timerExpired`. A legacy service runs a thread of its own and implements `run` besides; it has no
 * channel and is never told to stop: its body ends by itself when its own timer no longer runs.
 */
class ZERVA_EXPORT Service : public Executable, public Threadable {
 public:
  /** The thread body of a legacy service. The default returns at once. */
  void run() override;

  ~Service() override;
};
