#include "runtime/libClientUtils/bus/FrameBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "runtime/libClientUtils/bus/WireNumbers.h"

namespace zerva {

namespace {

// Many short frames are read at once.
constexpr std::size_t kLeast = std::size_t{32} * 1024;

// Behind a long frame comes the beginning of the next one, most of which is not to be copied.
constexpr std::size_t kBeginning = std::size_t{4} * 1024;

// What one long message needed is not kept for ever.
constexpr std::size_t kMuch = std::size_t{256} * 1024;

}  // namespace

std::array<std::span<char>, 2> FrameBuffer::room() {
  if (apart_.text == nullptr) putApart();
  std::span<char> apart;
  if (apart_.text != nullptr) {
    makeRoomApart();
    apart = std::span(*apart_.text).subspan(apart_.arrived);
    if (apart_.text->size() < apart_.size) return {apart, {}};
  }
  const std::size_t most = makeRoomInBuffer();
  return {apart, std::span(bytes_.get() + end_, std::min(capacity_ - end_, most))};
}

void FrameBuffer::arrived(std::size_t size) {
  if (apart_.text != nullptr) {
    const std::size_t ofData = std::min(size, apart_.text->size() - apart_.arrived);
    apart_.arrived += ofData;
    size -= ofData;
  }
  end_ += size;
}

/** Begins to put the data of the next frame apart, if that is to be done and can be. */
void FrameBuffer::putApart() {
  const std::size_t whole = announced();
  if (headSize_ == nullptr || whole <= kLong || whole <= inBuffer()) return;
  constexpr std::size_t kLength = sizeof(std::uint32_t);
  const std::size_t head = headSize_({bytes_.get() + taken_ + kLength, inBuffer() - kLength});
  if (head == 0) return;
  if (spare_ == nullptr) spare_ = std::make_shared<SpareText>();
  const std::size_t size = whole - kLength - head;
  const std::size_t here = inBuffer() - kLength - head;
  Apart apart{SpareText::make(spare_, std::min(size, std::max(kAtOnce, 2 * here))), head, size,
              here};
  std::copy_n(bytes_.get() + end_ - here, here, apart.text->data());
  apart_ = std::move(apart);
  end_ -= here;
  longOnes_ = true;
}

/** As long as more of the data is to come there is room for some of it. */
void FrameBuffer::makeRoomApart() {
  std::string& text = *apart_.text;
  if (apart_.arrived == text.size() && text.size() < apart_.size) {
    text.resize(std::min(apart_.size, 2 * text.size()));
  }
}

/** @returns how much of the room is to be used. */
std::size_t FrameBuffer::makeRoomInBuffer() {
  if (taken_ == end_) {
    taken_ = end_ = 0;
    if (capacity_ > kMuch) {
      bytes_.reset();
      capacity_ = 0;
    }
  }
  const std::size_t whole = apart_.text == nullptr ? announced() : 0;
  const bool likelyLong = longOnes_ && whole == 0;
  const std::size_t atOnce = likelyLong ? kBeginning : std::clamp(whole, kLeast, kAtOnce);
  // More than that only when there is no room left, so that it is not copied all the time.
  if (end_ == capacity_ || capacity_ - taken_ < atOnce) {
    const std::size_t twice = 2 * inBuffer();
    makeRoomFor(std::max(atOnce, whole > inBuffer() ? std::min(whole, twice) : twice));
  }
  return likelyLong ? kBeginning : capacity_;
}

/** @returns how long the next frame is, with its length; 0 when that is not known, or too long. */
std::size_t FrameBuffer::announced() const {
  WireReader reader({bytes_.get() + taken_, inBuffer()});
  std::uint32_t length = 0;
  return reader.take(length) && length <= limit_ ? sizeof length + length : 0;
}

/** Moves what is held to the front, of more memory if necessary. */
void FrameBuffer::makeRoomFor(std::size_t size) {
  const std::size_t here = inBuffer();
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
    std::size_t taken = 0;
    for (const std::span<char> to : room()) {
      const std::size_t size = std::min(to.size(), bytes.size());
      std::copy_n(bytes.data(), size, to.data());
      bytes.remove_prefix(size);
      taken += size;
    }
    arrived(taken);
  }
}

FrameBuffer::Next FrameBuffer::next(std::string_view& body, Payload& data) {
  data = nullptr;
  WireReader reader({bytes_.get() + taken_, inBuffer()});
  std::uint32_t length = 0;
  if (!reader.take(length)) {
    return Next::Incomplete;
  }
  if (length > limit_) {
    return Next::TooLong;
  }
  std::size_t size = length;
  if (apart_.text != nullptr) {
    if (apart_.arrived < apart_.size) return Next::Incomplete;
    size = apart_.head;
    data = std::exchange(apart_, {}).text;
  } else if (reader.rest().size() < length) {
    return Next::Incomplete;
  } else {
    longOnes_ = false;
  }
  body = reader.rest().substr(0, size);
  taken_ += sizeof length + size;
  return Next::Whole;
}

}  // namespace zerva
