#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/Envelope.h"
#include "runtime/libClientUtils/bus/SpareText.h"

namespace zerva {

/**
 * Takes what arrives and cuts it into frames. Whatever length a frame says that it has, there is
 * room for little more than twice of what has arrived, or for `kAtOnce`. One thread.
 *
 * The data of a long frame are put where its message keeps them, without a copy.
 */
class ZERVA_EXPORT FrameBuffer {
 public:
  /** For a frame that is no longer there is room as soon as its length has arrived. */
  static constexpr std::size_t kAtOnce = std::size_t{128} * 1024;

  /** A frame that is longer has its data put apart, when it does not arrive as a whole. */
  static constexpr std::size_t kLong = std::size_t{16} * 1024;

  /**
   * @param beginning of a frame, without its length.
   * @returns how many bytes stand before the frame's data; 0 when that is not known, or it has
   *     none that may be put apart.
   */
  using HeadSize = std::size_t (*)(std::string_view beginning);

  /**
   * @param limit the longest frame that is taken.
   * @param headSize null when no data are to be put apart.
   */
  explicit FrameBuffer(std::size_t limit, HeadSize headSize = nullptr)
      : limit_(limit), headSize_(headSize) {}

  void setLimit(std::size_t limit) { limit_ = limit; }

  /**
   * @returns where to put what arrives next, the first place first; never both empty. If possible
   *     the rest of a frame that is not whole fits. Valid until the next call. Ends the life of
   *     what `next` gave.
   */
  std::array<std::span<char>, 2> room();

  /** So many bytes have been put where `room` said last. */
  void arrived(std::size_t size);

  /** Takes a copy of what has arrived. Ends the life of what `next` gave. */
  void append(std::string_view bytes);

  enum class Next { Whole, Incomplete, TooLong };

  /**
   * @param body gets the next frame without its length, when it is there as a whole; valid until
   *     the next call of `room` or `append`.
   * @param data gets the frame's data when they were put apart, and are not in the body; else null.
   */
  Next next(std::string_view& body, Payload& data);

  /** @returns how many bytes of a frame that is not whole are held. */
  std::size_t held() const { return inBuffer() + apart_.arrived; }

  /** @returns how many bytes of memory are taken. */
  std::size_t capacity() const {
    return capacity_ + (apart_.text != nullptr ? apart_.text->capacity() : 0);
  }

 private:
  /** Data that are put apart; there is a text while they arrive. */
  struct Apart {
    std::shared_ptr<std::string> text;
    std::size_t head = 0;     // bytes of the frame that are in the buffer
    std::size_t size = 0;     // of the data, as the frame says
    std::size_t arrived = 0;  // of the data
  };

  std::size_t inBuffer() const { return end_ - taken_; }
  std::size_t announced() const;
  void putApart();
  void makeRoomApart();
  std::size_t makeRoomInBuffer();
  void makeRoomFor(std::size_t size);

  std::size_t limit_;
  HeadSize headSize_;
  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_ = 0;
  std::size_t taken_ = 0;  // of the bytes, by `next`
  std::size_t end_ = 0;    // of the bytes that have arrived
  Apart apart_;
  bool longOnes_ = false;  // the last frame was one
  std::shared_ptr<SpareText> spare_;
};

}  // namespace zerva
