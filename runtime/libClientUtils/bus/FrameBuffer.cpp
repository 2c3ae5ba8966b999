#include "runtime/libClientUtils/bus/FrameBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "runtime/libClientUtils/bus/WireNumbers.h"

namespace zerva {

namespace {

// Many short frames are read at once.
constexpr std::size_t kLeast = std::size_t{32} * 1024;

// What one long message needed is not kept for ever.
constexpr std::size_t kMuch = std::size_t{256} * 1024;

}  // namespace

std::span<char> FrameBuffer::room() {
  if (taken_ == end_) {
    taken_ = end_ = 0;
    if (capacity_ > kMuch) {
      bytes_.reset();
      capacity_ = 0;
    }
  }
  const std::size_t whole = announced();
  const std::size_t atOnce = std::clamp(whole, kLeast, kAtOnce);
  // More than that only when there is no room left, so that it is not copied all the time.
  if (end_ == capacity_ || capacity_ - taken_ < atOnce) {
    const std::size_t twice = 2 * held();
    makeRoomFor(std::max(atOnce, whole > held() ? std::min(whole, twice) : twice));
  }
  return {bytes_.get() + end_, capacity_ - end_};
}

/** @returns how long the next frame is, with its length; 0 when that is not known, or too long. */
std::size_t FrameBuffer::announced() const {
  WireReader reader({bytes_.get() + taken_, held()});
  std::uint32_t length = 0;
  return reader.take(length) && length <= limit_ ? sizeof length + length : 0;
}

/** Moves what is held to the front, of more memory if necessary. */
void FrameBuffer::makeRoomFor(std::size_t size) {
  const std::size_t here = held();
  if (capacity_ >= size) {
    std::memmove(bytes_.get(), bytes_.get() + taken_, here);
  } else {
    auto more = std::make_unique_for_overwrite<char[]>(size);
    std::copy_n(bytes_.get() + taken_, here, more.get());
    bytes_ = std::move(more);
    capacity_ = size;
  }
  taken_ = 0;
  end_ = here;
}

void FrameBuffer::append(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::span<char> to = room();
    const std::size_t size = std::min(to.size(), bytes.size());
    std::copy_n(bytes.data(), size, to.data());
    arrived(size);
    bytes.remove_prefix(size);
  }
}

FrameBuffer::Next FrameBuffer::next(std::string_view& body) {
  WireReader reader({bytes_.get() + taken_, held()});
  std::uint32_t length = 0;
  if (!reader.take(length)) {
    return Next::Incomplete;
  }
  if (length > limit_) {
    return Next::TooLong;
  }
  if (reader.rest().size() < length) {
    return Next::Incomplete;
  }
  body = reader.rest().substr(0, length);
  taken_ += sizeof length + length;
  return Next::Whole;
}

}  // namespace zerva
