#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "framework/Export.h"

namespace zerva {

/**
 * Cuts what arrives into frames. It holds no more than has arrived, whatever length a frame says
 * that it has. One thread.
 */
class ZERVA_EXPORT FrameBuffer {
 public:
  /** @param limit the longest frame that is taken. */
  explicit FrameBuffer(std::size_t limit) : limit_(limit) {}

  void setLimit(std::size_t limit) { limit_ = limit; }

  /** Takes what has arrived. Ends the life of what `next` gave. */
  void append(std::string_view bytes);

  enum class Next { Whole, Incomplete, TooLong };

  /**
   * @param body gets the next frame without its length, when it is there as a whole; valid until
   *     the next call of `append`.
   */
  Next next(std::string_view& body);

  /** @returns how many bytes of a frame that is not whole are held. */
  std::size_t held() const { return bytes_.size() - taken_; }

 private:
  std::size_t limit_;
  std::string bytes_;
  std::size_t taken_ = 0;  // of the bytes, by `next`
};

}  // namespace zerva
