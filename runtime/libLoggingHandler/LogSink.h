#pragma once

#include "framework/Export.h"
#include "runtime/libLoggingHandler/LogRecord.h"

namespace zerva {

/** Where a program wants log lines to go besides the ordinary sinks. */
class ZERVA_EXPORT LogSink {
 public:
  /**
   * Takes a line. Called on the thread that logs, several at once, with no lock of the logger held.
   * It may log; such lines are not handed to the same sink.
   *
   * @param record valid during the call.
   * @throws nothing; what it throws all the same is reported on the ordinary sinks.
   */
  virtual void write(const LogRecord& record) = 0;

 protected:
  ~LogSink() = default;
};

}  // namespace zerva
