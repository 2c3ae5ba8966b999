#include "runtime/libClientUtils/bus/NameRecords.h"

#include "runtime/libClientUtils/bus/WireNumbers.h"

namespace zerva {

namespace {

// "ZRVN" and the version.
constexpr std::uint32_t kMagic = 0x5a52564e;
constexpr std::uint16_t kVersion = 1;

constexpr char kServed = '+';
constexpr char kUnserved = '-';

std::string record(char kind, std::string_view name, std::uint64_t stamp) {
  std::string bytes(1, kind);
  appendNumber(bytes, stamp);
  appendNumber(bytes, static_cast<std::uint16_t>(name.size()));
  return bytes += name;
}

}  // namespace

std::string journalHeader() {
  std::string header;
  appendNumber(header, kMagic);
  appendNumber(header, kVersion);
  return header;
}

std::string servedRecord(std::string_view name, std::uint64_t since) {
  return record(kServed, name, since);
}

std::string unservedRecord(std::string_view name, std::uint64_t now) {
  return record(kUnserved, name, now);
}

bool JournalParser::feed(std::string_view bytes) {
  if (!good_) {
    return false;
  }
  size_ += bytes.size();
  left_ += bytes;
  std::string_view rest = left_;
  Found found = size_ <= kMaximumJournal ? Found::Whole : Found::Bad;
  while (found == Found::Whole) {
    found = begun_ ? takeRecord(rest) : takeHeader(rest);
  }
  good_ = found != Found::Bad;
  if (good_) {
    left_.erase(0, left_.size() - rest.size());
  } else {
    left_ = {};
    names_.clear();
  }
  return good_;
}

std::size_t JournalParser::takeBackPartial() {
  const std::size_t partial = left_.size();
  left_.clear();
  size_ -= partial;
  return partial;
}

JournalParser::Found JournalParser::takeHeader(std::string_view& bytes) {
  const std::string header = journalHeader();
  if (bytes.size() < header.size()) {
    return Found::Incomplete;
  }
  begun_ = bytes.substr(0, header.size()) == header;
  bytes.remove_prefix(header.size());
  return begun_ ? Found::Whole : Found::Bad;
}

JournalParser::Found JournalParser::takeRecord(std::string_view& bytes) {
  WireReader reader(bytes);
  std::uint8_t kind = 0;
  std::uint64_t stamp = 0;
  std::string_view name;
  if (!reader.take(kind)) {
    return Found::Incomplete;
  }
  if (kind != kServed && kind != kUnserved) {
    return Found::Bad;
  }
  if (!reader.take(stamp) || !reader.takeText(name)) {
    return Found::Incomplete;
  }
  if (kind == kServed) {
    names_[std::string(name)] = stamp;
  } else {
    names_.erase(std::string(name));
  }
  bytes = reader.rest();
  return names_.size() <= kMaximumNames ? Found::Whole : Found::Bad;
}

}  // namespace zerva
