#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/libClientUtils/trace/TraceNames.h"

namespace zerva {

/** What every event has; in a buffer its fields follow it. */
struct TraceHeader {
  std::int64_t t = 0;
  std::int32_t thread = 0;
  /** Bytes of header and fields. */
  std::uint16_t size = 0;
  TraceKind kind = TraceKind::Trace;
  std::array<char, 16> threadName{};
};

/**
 * An event as it is kept until it is written: header and fields one after the other. Filled on the
 * stack of the thread that it happens on, without memory from elsewhere.
 */
class TraceRecord {
 public:
  static constexpr std::size_t kLargest = 2048;

  explicit TraceRecord(const TraceHeader& header);

  /** What does not fit is cut. */
  void add(TraceKey key, std::string_view text);
  void add(TraceKey key, std::int64_t number);
  /** For whom it happened; nothing when that is empty. */
  void addService(std::string_view service);

  /** @returns the record's bytes, with its size in the header. */
  std::string_view bytes();

 private:
  void putText(std::uint8_t key, std::string_view text);
  void put(const void* data, std::size_t size);

  std::size_t size_ = sizeof(TraceHeader);
  // Only what is filled is ever read.
  std::array<char, kLargest> data_;  // NOLINT(cppcoreguidelines-pro-type-member-init)
};

/** @returns the time and the size of the record at the beginning of some bytes. */
TraceHeader headerOf(std::string_view records);

/** Appends a record as a line of a trace file. @param record the bytes of one. */
void appendLine(std::string& lines, std::string_view record);

/** Appends the fields that every line has. @param service may be empty. */
void appendBeginning(std::string& lines, const TraceHeader& header, std::string_view service);

}  // namespace zerva
