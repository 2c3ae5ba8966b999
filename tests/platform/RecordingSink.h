#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "runtime/libLoggingHandler/LogSettings.h"

namespace zerva {

/** Gets log lines as long as it lives, and keeps them. */
class RecordingSink : public LogSink {
 public:
  explicit RecordingSink(const std::string& module = "", int level = 100) {
    LogSettings::addSink(*this, module, level);
  }
  virtual ~RecordingSink() { LogSettings::removeSink(*this); }
  RecordingSink(const RecordingSink&) = delete;
  RecordingSink& operator=(const RecordingSink&) = delete;

  void write(const LogRecord& record) override {
    {
      const std::lock_guard lock(mutex_);
      records_.push_back(record);
    }
    if (onWrite) onWrite(record);
  }

  std::vector<LogRecord> records() const {
    const std::lock_guard lock(mutex_);
    return records_;
  }

  std::vector<std::string> texts() const {
    std::vector<std::string> texts;
    for (const LogRecord& record : records()) texts.push_back(record.text);
    return texts;
  }

  /** Called with each line, without a lock; set before the first line. */
  std::function<void(const LogRecord&)> onWrite;

 private:
  mutable std::mutex mutex_;
  std::vector<LogRecord> records_;  // guarded by mutex_
};

}  // namespace zerva
