#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>

#include "runtime/libLoggingHandler/LogSink.h"

namespace zerva {

/** A sink that the program added, with what it takes and who is in a call of it. */
class SuppliedSink {
 public:
  SuppliedSink(LogSink& sink, std::string module, int level);

  bool is(const LogSink& sink) const { return &sink_ == &sink; }
  int level() const { return level_; }
  bool takes(std::string_view module, int level) const;

  /** Hands a line to the sink unless it was closed or the line was logged by the sink itself. */
  void write(const LogRecord& record);

  /** After it no call begins and none is under way, except on the calling thread. */
  void close();

 private:
  class Call;

  // Constant after construction.
  LogSink& sink_;
  const std::string module_;
  const int level_;

  std::mutex mutex_;
  std::condition_variable callEnded_;
  // Guarded by mutex_.
  int calls_ = 0;
  int awaited_ = 0;  // calls whose thread has not closed the sink itself
  bool closed_ = false;
};

}  // namespace zerva
