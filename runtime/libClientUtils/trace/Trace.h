#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/trace/TraceNames.h"

namespace zerva {

/**
 * Writes down what happens in the process, to a file that docs/trace.md describes; off until it is
 * started. One for the process. Any thread may call any operation, but for those that say
 * otherwise.
 */
class ZERVA_EXPORT Trace {
 public:
  /** @returns whether it is on: one relaxed read, for the points where something happens. */
  static bool on() { return on_.load(std::memory_order_relaxed); }

  /**
   * Starts to write, to a new file; one that is there is replaced. Ends what was started before.
   * Not beside `stop` or itself.
   *
   * @param path the file.
   * @param about what is traced, the directive file of a host.
   * @returns why that cannot be done; empty when it is.
   */
  static std::string start(const std::string& path, const std::string& about);

  /** Writes what is left, and ends. Does nothing when it is not on. Not beside `start` or itself.
   */
  static void stop();

  /** Writes out what happened up to now, with the counts of the calls. Waits for the disk. */
  static void flush();

  /** @returns nanoseconds of the monotonic clock. */
  static std::int64_t now();

  /** @returns `now()` when it is on, else 0, for `TraceEvent::since`. */
  static std::int64_t begin() { return on() ? now() : 0; }

  /**
   * Says for which service the calling thread, and each that it starts, works from here on, as far
   * as it does not serve a request of another one.
   *
   * @param service empty for nobody in particular. Kept for good, so there should be few.
   * @param comingUp whether the service is coming up, so that its calls are written one by one.
   */
  static void workFor(const std::string& service, bool comingUp);

  /** @returns whether the calling thread works for a service that is coming up. */
  static bool worksForOneComingUp();

  /** @returns for whom the calling thread works; empty for nobody in particular. Copy it. */
  static std::string_view servedByThisThread();

  /** Counts a call; writes it too when it is made for a service that is coming up. */
  static void called(std::string_view channel, std::string_view interface, std::string_view method,
                     std::int64_t begin, const std::string& error);

 private:
  friend class TraceEvent;
  friend class TraceWriter;
  static std::atomic<bool> on_;
};

/**
 * While it lives, the calling thread works for another service, or for nobody, also when it serves
 * a request.
 */
class ZERVA_EXPORT TraceWorkScope {
 public:
  /** @param service empty for nobody in particular; as for `Trace::workFor`. */
  explicit TraceWorkScope(const std::string& service);
  ~TraceWorkScope();
  TraceWorkScope(const TraceWorkScope&) = delete;
  TraceWorkScope& operator=(const TraceWorkScope&) = delete;

 private:
  const std::string* const before_;
  const bool comingUp_;
  const bool inScope_;
};

}  // namespace zerva
