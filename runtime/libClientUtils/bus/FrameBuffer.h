#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include "framework/Export.h"

namespace zerva {

/**
 * Takes what arrives and cuts it into frames. Whatever length a frame says that it has, there is
 * room for little more than twice of what has arrived, or for `kAtOnce`. One thread.
 */
class ZERVA_EXPORT FrameBuffer {
 public:
  /** For a frame that is no longer there is room as soon as its length has arrived. */
  static constexpr std::size_t kAtOnce = std::size_t{128} * 1024;

  /** @param limit the longest frame that is taken. */
  explicit FrameBuffer(std::size_t limit) : limit_(limit) {}

  void setLimit(std::size_t limit) { limit_ = limit; }

  /**
   * @returns where to put what arrives next, never empty; if possible the rest of a frame that is
   *     not whole fits. Valid until the next call. Ends the life of what `next` gave.
   */
  std::span<char> room();

  /** So many bytes have been put where `room` said last. */
  void arrived(std::size_t size) { end_ += size; }

  /** Takes a copy of what has arrived. Ends the life of what `next` gave. */
  void append(std::string_view bytes);

  enum class Next { Whole, Incomplete, TooLong };

  /**
   * @param body gets the next frame without its length, when it is there as a whole; valid until
   *     the next call of `room` or `append`.
   */
  Next next(std::string_view& body);

  /** @returns how many bytes of a frame that is not whole are held. */
  std::size_t held() const { return end_ - taken_; }

  /** @returns how many bytes of memory are taken. */
  std::size_t capacity() const { return capacity_; }

 private:
  std::size_t announced() const;
  void makeRoomFor(std::size_t size);

  std::size_t limit_;
  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t taken_ = 0;  // of the bytes, by `next`
  std::size_t end_ = 0;    // of the bytes that have arrived
};

}  // namespace zerva
