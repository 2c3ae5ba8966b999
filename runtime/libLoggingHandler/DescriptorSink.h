#pragma once

#include <spdlog/sinks/base_sink.h>

#include <memory>
#include <mutex>
#include <string>

namespace zerva {

/** Writes each line to a file descriptor at once, with one call of the system where that works. */
class DescriptorSink : public spdlog::sinks::base_sink<std::mutex> {
 public:
  /**
   * @param descriptor where lines are written.
   * @param path the file that it is, to be closed at the end; empty for standard error.
   * @param formatter makes the lines.
   */
  DescriptorSink(int descriptor, std::string path, std::unique_ptr<spdlog::formatter> formatter);
  ~DescriptorSink() override;

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override;
  void flush_() override;

 private:
  void reportFailure(int error);

  // Constant after construction.
  const int descriptor_;
  const std::string path_;

  // Guarded by the base's mutex.
  bool failureReported_ = false;
};

/** @returns a sink for standard error, in the journal's form when that is what it leads to. */
std::shared_ptr<spdlog::sinks::sink> openStandardError();

/** @returns a sink that appends to a file, or null with the reason in `error`. */
std::shared_ptr<spdlog::sinks::sink> openLogFile(const std::string& path, std::string& error);

}  // namespace zerva
