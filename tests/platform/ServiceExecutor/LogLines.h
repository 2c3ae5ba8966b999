#pragma once

#include <string>

#include "runtime/libLoggingHandler/LogSettings.h"
#include "tests/support/ExecutorWorld.h"

namespace zerva {

/** What executors log as long as it lives. */
class LogLines final : public LogSink {
 public:
  LogLines() { LogSettings::addSink(*this, "Service Executor", 5); }
  ~LogLines() { LogSettings::removeSink(*this); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  void write(const LogRecord& record) override { journal.add(std::string(record.text)); }

  Journal journal;
};

}  // namespace zerva
