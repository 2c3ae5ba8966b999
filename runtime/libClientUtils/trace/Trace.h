#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "framework/Export.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "runtime/libClientUtils/trace/TraceNames.h"

namespace zerva {

/**
 * Writes down what happens in the process, to a file that docs/trace.md describes; off until it is
 * started. One for the process. Any thread may call any operation, but for those that say
 * otherwise. Where there is no memory, the trace loses something and counts it; none of its
 * operations throws but `start` and `stop`. Nothing is allocated while it is off.
 */
class ZERVA_EXPORT Trace {
 public:
  /** @returns whether it is on: one relaxed read, for the points where something happens. */
  static bool on() { return (wanted_.load(std::memory_order_relaxed) & kEvents) != 0; }

  /** @returns whether calls are counted: it is on, or `SeenCalls` are; one relaxed read, too. */
  static bool countsCalls() { return wanted_.load(std::memory_order_relaxed) != 0; }

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

  /** @returns as `begin`, for `called`. */
  static std::int64_t beginOfCall() { return countsCalls() ? now() : 0; }

  /**
   * Says for which service the calling thread, and each that it starts, works from here on, as far
   * as it does not serve a request of another one.
   *
   * @param service empty for nobody in particular; nobody as well while no calls are counted. Kept
   *     for good, so there should be few.
   * @param comingUp whether the service is coming up, so that its calls are written one by one.
   * @param ownCode whether something of the service itself runs on the thread, rather than only
   *     what is done about it.
   */
  static void workFor(std::string_view service, bool comingUp, bool ownCode = true) noexcept;

  /** @returns whether a service may do something itself on the calling thread. */
  static bool runsOwnCode();

  /** @returns whether the calling thread works for a service that is coming up. */
  static bool worksForOneComingUp();

  /** @returns for whom the calling thread works; empty for nobody in particular. Copy it. */
  static std::string_view servedByThisThread();

  /** Counts an event that cannot be written. */
  static void lose() noexcept;

  /** Does what only the trace needs; when that fails, an event is lost. */
  template <typename Work>
  static void guarded(const Work& work) {
    if (exceptionOf(work)) lose();
  }

  /**
   * Counts a call; writes it too when it is made for a service that is coming up.
   *
   * @param begin what `beginOfCall` gave before it; nothing happens for 0.
   */
  static void called(std::string_view channel, std::string_view interface, std::string_view method,
                     std::int64_t begin, const std::string& error);

 private:
  friend class SeenCalls;
  friend class TraceEvent;
  friend class TraceWriter;

  /** What for: bits of `wanted_`. */
  static constexpr unsigned char kEvents = 1;
  static constexpr unsigned char kSeenCalls = 2;

  static void want(unsigned char what) { wanted_.fetch_or(what, std::memory_order_relaxed); }
  static void wantNoMore(unsigned char what) {
    wanted_.fetch_and(static_cast<unsigned char>(~what), std::memory_order_relaxed);
  }

  static std::atomic<unsigned char> wanted_;
};

/** While it lives, the calling thread works for another service, or for nobody. */
class ZERVA_EXPORT TraceWorkScope {
 public:
  /**
   * @param service empty for nobody in particular; a text that lives longer.
   * @param alsoWhileServing whether it does so as well when it serves a request of another one.
   */
  explicit TraceWorkScope(std::string_view service, bool alsoWhileServing = true);
  ~TraceWorkScope();
  TraceWorkScope(const TraceWorkScope&) = delete;
  TraceWorkScope& operator=(const TraceWorkScope&) = delete;

 private:
  const std::string_view before_;
  const bool comingUp_;
  const bool ownCode_;
  const bool inScope_;
};

}  // namespace zerva
