#include "runtime/libClientUtils/trace/TraceRecord.h"

#include <algorithm>
#include <cstring>

#include "runtime/libClientUtils/trace/JsonText.h"

namespace zerva {
namespace {

// Above all keys; a number's key has the bit set that tells it from a text's.
constexpr std::uint8_t kServiceKey = 0x7F;
constexpr std::uint8_t kNumber = 0x80;

template <typename Value>
Value take(std::string_view& bytes) {
  Value value{};
  std::memcpy(&value, bytes.data(), sizeof value);
  bytes.remove_prefix(sizeof value);
  return value;
}

std::string_view takeText(std::string_view& bytes) {
  const auto length = take<std::uint16_t>(bytes);
  const std::string_view text = bytes.substr(0, length);
  bytes.remove_prefix(length);
  return text;
}

}  // namespace

// Left as it is: most records fill little of it, and nothing of the rest is read.
// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
TraceRecord::TraceRecord(const TraceHeader& header) {
  std::memcpy(data_.data(), &header, sizeof header);
}

void TraceRecord::add(TraceKey key, std::string_view text) {
  putText(static_cast<std::uint8_t>(key), text);
}

void TraceRecord::add(TraceKey key, std::int64_t number) {
  if (size_ + 1 + sizeof number > kLargest) return;
  const auto tagged = static_cast<std::uint8_t>(static_cast<std::uint8_t>(key) | kNumber);
  put(&tagged, 1);
  put(&number, sizeof number);
}

void TraceRecord::addService(std::string_view service) {
  if (!service.empty()) putText(kServiceKey, service);
}

void TraceRecord::putText(std::uint8_t key, std::string_view text) {
  constexpr std::size_t around = 1 + sizeof(std::uint16_t);
  // A number, a duration for the most part, always finds room behind a long text.
  constexpr std::size_t kept = 2 * (1 + sizeof(std::int64_t));
  if (size_ + around + kept > kLargest) return;
  const auto length =
      static_cast<std::uint16_t>(std::min(text.size(), kLargest - kept - around - size_));
  put(&key, 1);
  put(&length, sizeof length);
  put(text.data(), length);
}

void TraceRecord::put(const void* data, std::size_t size) {
  // An empty text may have no place at all, which memcpy must not be given.
  if (size == 0) return;
  std::memcpy(data_.data() + size_, data, size);
  size_ += size;
}

std::string_view TraceRecord::bytes() {
  const auto size = static_cast<std::uint16_t>(size_);
  std::memcpy(data_.data() + offsetof(TraceHeader, size), &size, sizeof size);
  return {data_.data(), size_};
}

TraceHeader headerOf(std::string_view records) { return take<TraceHeader>(records); }

void appendBeginning(std::string& lines, const TraceHeader& header, std::string_view service) {
  lines += R"({"event":")";
  lines += nameOf(header.kind);
  lines += R"(","t":)" + std::to_string(header.t);
  lines += R"(,"thread":{"id":)" + std::to_string(header.thread) + R"(,"name":)";
  const char* name = header.threadName.data();
  appendJsonText(lines, {name, ::strnlen(name, header.threadName.size())});
  lines += '}';
  if (service.empty()) return;
  lines += ",\"service\":";
  appendJsonText(lines, service);
}

void appendLine(std::string& lines, std::string_view record) {
  const auto header = take<TraceHeader>(record);
  appendBeginning(lines, header, {});
  while (!record.empty()) {
    const auto key = take<std::uint8_t>(record);
    lines += ",\"";
    lines += key == kServiceKey ? std::string_view("service")
                                : nameOf(static_cast<TraceKey>(key & ~kNumber));
    lines += "\":";
    if ((key & kNumber) != 0) {
      lines += std::to_string(take<std::int64_t>(record));
    } else {
      appendJsonText(lines, takeText(record));
    }
  }
  lines += "}\n";
}

}  // namespace zerva
