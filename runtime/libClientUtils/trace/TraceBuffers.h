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
 * at one. One that is full gets another piece of memory, until all of them together have `kMost`:
 * a single thread that brings up many services needs more than its share for a while. Any thread
 * may call any operation, and none throws but `reserve`; none waits for more than the copying of a
 * record.
 */
class ZERVA_EXPORT TraceBuffers {
 public:
  static constexpr std::size_t kBuffers = 8;
  static constexpr std::size_t kBytes = std::size_t{64} * 1024;
  /** All that ever waits. */
  static constexpr std::size_t kMost = std::size_t{8} * 1024 * 1024;

  /** Takes the room; throws std::bad_alloc when there is none. */
  void reserve();

  /**
   * Adds a record, or counts it as lost when there is no room for it.
   *
   * @param which any number; threads with different ones seldom meet.
   * @returns whether a piece is half full now and was not before, so that it should be emptied.
   */
  bool add(unsigned which, std::string_view record) noexcept;

  /**
   * Moves what waits to the end of `records`, each buffer's in the order of adding; what finds no
   * memory there is counted as lost. For one thread at a time.
   */
  void takeAll(std::string& records) noexcept;

  /** @returns how many were lost since this was asked last. */
  unsigned long takeLost() { return lost_.exchange(0, std::memory_order_relaxed); }

  void countLost(unsigned long events) { lost_.fetch_add(events, std::memory_order_relaxed); }

 private:
  /** Some memory and what is in it. */
  struct Piece {
    std::vector<char> bytes;
    std::size_t used = 0;
    unsigned long records = 0;

    bool fits(std::string_view record) const { return used + record.size() <= bytes.size(); }
  };

  // A line of the processor's cache is not shared by two of them.
  struct alignas(64) Buffer {
    std::mutex mutex;
    // Guarded by mutex.
    std::vector<Piece> full;
    Piece piece;
  };

  static constexpr std::size_t kMostPieces = kMost / kBytes - kBuffers;

  bool grow(Buffer& buffer) noexcept;
  void take(const Piece& piece, std::string& records) noexcept;

  std::array<Buffer, kBuffers> buffers_;
  Piece spare_;                         // of the one thread that takes
  std::atomic<std::size_t> pieces_{0};  // those that are full
  std::atomic<unsigned long> lost_{0};
};

}  // namespace zerva
