#pragma once

#include <cstdint>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/trace/Trace.h"
#include "runtime/libClientUtils/trace/TraceRecord.h"

namespace zerva {

/**
 * Something that has just happened on the calling thread. Made only while the trace is on:
 *
 *     if (Trace::on()) TraceEvent(TraceKind::ChannelOpened).with(TraceKey::Channel, name).write();
 */
class ZERVA_EXPORT TraceEvent {
 public:
  explicit TraceEvent(TraceKind kind);

  /** Adds a field; what is too long is cut. */
  TraceEvent& with(TraceKey key, std::string_view text);
  TraceEvent& with(TraceKey key, std::int64_t number);

  /** Adds the error, when there is one. @param error may be null. */
  TraceEvent& withError(const char* error);

  /** Adds how long it took. @param begin what `Trace::begin` gave; nothing is added for 0. */
  TraceEvent& since(std::int64_t begin);

  /** Says for whom it happened, instead of for whom the thread works. Before the other fields. */
  TraceEvent& forService(std::string_view service);

  /** Hands it over to be written. Never waits for the disk. */
  void write() noexcept;

 private:
  void addService();

  const std::int64_t t_;
  bool serviceKnown_ = false;
  TraceRecord record_;
};

}  // namespace zerva
