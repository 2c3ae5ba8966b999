#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "framework/Export.h"

namespace zerva {

/**
 * Where records wait until they are written. There are several buffers, so that threads seldom meet
 * at one; they do not grow. Any thread may call any operation; none waits for more than the copying
 * of a record.
 */
class ZERVA_EXPORT TraceBuffers {
 public:
  static constexpr std::size_t kBuffers = 8;
  static constexpr std::size_t kBytes = std::size_t{64} * 1024;

  /** Takes the room; throws std::bad_alloc when there is none. */
  void reserve();

  /**
   * Adds a record, or counts it as lost when there is no room for it.
   *
   * @param which any number; threads with different ones seldom meet.
   * @returns whether the buffer is half full now and was not before, so that it should be emptied.
   */
  bool add(unsigned which, std::string_view record);

  /** Moves what waits to the end of `records`, each buffer's in the order of adding. */
  void takeAll(std::string& records);

  /** @returns how many were lost since this was asked last. */
  unsigned long takeLost() { return lost_.exchange(0, std::memory_order_relaxed); }

  void countLost(unsigned long events) { lost_.fetch_add(events, std::memory_order_relaxed); }

 private:
  // A line of the processor's cache is not shared by two of them.
  struct alignas(64) Buffer {
    std::mutex mutex;
    // Guarded by mutex.
    std::vector<char> bytes;
    std::size_t used = 0;
  };

  std::array<Buffer, kBuffers> buffers_;
  std::vector<char> spare_;  // of the one thread that takes
  std::atomic<unsigned long> lost_{0};
};

}  // namespace zerva
