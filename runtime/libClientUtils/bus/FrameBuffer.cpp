#include "runtime/libClientUtils/bus/FrameBuffer.h"

#include <cstdint>

#include "runtime/libClientUtils/bus/WireNumbers.h"

namespace zerva {

namespace {

// What one long message needed is not kept for ever.
constexpr std::size_t kMuch = std::size_t{256} * 1024;

}  // namespace

void FrameBuffer::append(std::string_view bytes) {
  bytes_.erase(0, taken_);
  taken_ = 0;
  if (bytes_.empty() && bytes_.capacity() > kMuch) {
    bytes_.shrink_to_fit();
  }
  bytes_ += bytes;
}

FrameBuffer::Next FrameBuffer::next(std::string_view& body) {
  WireReader reader(std::string_view(bytes_).substr(taken_));
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
