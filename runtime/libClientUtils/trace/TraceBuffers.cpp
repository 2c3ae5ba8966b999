#include "runtime/libClientUtils/trace/TraceBuffers.h"

#include <cstring>

namespace zerva {

void TraceBuffers::reserve() {
  spare_.resize(kBytes);
  for (Buffer& buffer : buffers_) {
    std::vector<char> bytes(kBytes);
    const std::lock_guard lock(buffer.mutex);
    buffer.bytes.swap(bytes);
    buffer.used = 0;
  }
  takeLost();
}

bool TraceBuffers::add(unsigned which, std::string_view record) {
  Buffer& buffer = buffers_[which % kBuffers];
  constexpr std::size_t half = kBytes / 2;
  {
    const std::lock_guard lock(buffer.mutex);
    const std::size_t before = buffer.used;
    if (before + record.size() <= buffer.bytes.size()) {
      std::memcpy(buffer.bytes.data() + before, record.data(), record.size());
      buffer.used += record.size();
      return before < half && buffer.used >= half;
    }
  }
  countLost(1);
  return false;
}

void TraceBuffers::takeAll(std::string& records) {
  for (Buffer& buffer : buffers_) {
    std::size_t used = 0;
    {
      const std::lock_guard lock(buffer.mutex);
      buffer.bytes.swap(spare_);
      used = buffer.used;
      buffer.used = 0;
    }
    records.append(spare_.data(), used);
  }
}

}  // namespace zerva
