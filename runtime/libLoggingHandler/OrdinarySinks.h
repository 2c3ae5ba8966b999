#pragma once

#include <spdlog/sinks/sink.h>

#include <memory>
#include <shared_mutex>
#include <string>
#include <vector>

#include "runtime/libLoggingHandler/LogRecord.h"

namespace zerva {

/** Standard error, the file and the system log. One object a process, never destroyed. */
class OrdinarySinks {
 public:
  static OrdinarySinks& instance();

  /** Writes a line to those that are on. Throws nothing but for want of memory. */
  void write(const LogRecord& record);

  void standardError(bool on);
  bool file(const std::string& path, std::string& error);
  void systemLog(bool on);
  void flush();

 private:
  using Sink = std::shared_ptr<spdlog::sinks::sink>;

  OrdinarySinks();
  std::vector<Sink> sinks() const;

  mutable std::shared_mutex mutex_;
  // Guarded by mutex_; null when off.
  Sink standardError_;
  Sink file_;
  Sink systemLog_;
};

}  // namespace zerva
