#pragma once

#include "framework/Export.h"

/** Small questions to the operating system. */
class ZERVA_EXPORT OSWrappers {
 public:
  /** @returns the system's id of the calling thread, as debuggers and logs show it. */
  static int curID();
};
