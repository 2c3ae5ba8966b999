#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "runtime/libClientUtils/trace/CallTally.h"
#include "runtime/libClientUtils/trace/TraceBuffers.h"

namespace zerva {

/** The buffers, the counts, and the thread that brings both into the file. One for the process. */
class TraceWriter {
 public:
  /** @returns the one; never destroyed, since threads may still trace while the process ends. */
  static TraceWriter& instance();

  /** See `Trace`. */
  std::string start(const std::string& path, const std::string& about);
  void stop();
  void flush();

  void add(unsigned which, std::string_view record) noexcept;
  void count(unsigned which, const CallKey& key, std::int64_t duration, bool failed) noexcept;
  void lose() noexcept { buffers_.countLost(1); }

 private:
  void run();
  void wake() noexcept;
  void writeOut(bool withCounts);
  bool appendEvents(std::string& lines);
  void appendCounts(std::string& lines);
  static void appendLost(std::string& lines, unsigned long lost);
  void put(const std::string& lines);
  void end(int error);

  TraceBuffers buffers_;
  CallTally tally_;

  std::mutex mutex_;
  std::condition_variable wanted_;
  // Guarded by mutex_.
  bool ending_ = false;
  bool full_ = false;

  // One at a time takes from the buffers and writes.
  std::mutex fileMutex_;
  // Guarded by fileMutex_.
  int file_ = -1;
  std::string path_;
  std::uint64_t written_ = 0;
  std::string records_;

  std::thread thread_;
};

}  // namespace zerva
