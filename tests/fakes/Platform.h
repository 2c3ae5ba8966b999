#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/fakes/Objects.h"
#include "tests/fakes/Trace.h"

namespace zerva::fakes {

/** What a scripted library answers for one name. */
struct Symbol {
  void* address = nullptr;
  /** What resolving the name fails with, if it does; the address is given back all the same. */
  std::optional<std::string> error;
};

/** A scripted library. */
struct Library {
  /** What opening it fails with, if it does. */
  std::optional<std::string> error;
  std::map<std::string, Symbol> symbols;
};

/**
 * What a test tells the recording platform: how it answers, where it fails, what time it is.
 * `reset` puts everything back to a platform on which every call works.
 */
class Platform {
 public:
  /**
   * Forgets all scripts, the trace and the objects, and sets the clocks to their beginning.
   * Objects that still live keep living but are not known any more.
   */
  static void reset();

  // ---- failures and events ----

  /**
   * Runs a hook whenever a call is recorded whose text begins with `call`; what it records is
   * nested, and an exception that leaves it leaves the platform call.
   */
  static void on(const std::string& call, std::function<void()> hook);

  /** As `on`, for the first such call only. */
  static void once(const std::string& call, std::function<void()> hook);

  /** Gives calls whose text begins with `call` a result of the test's choice. */
  static void answer(const std::string& call, long result);

  /** @returns the result that was scripted for a call, or `natural`. */
  static long answerOf(const std::string& call, long natural);

  // ---- logging ----

  /** The highest level that `loggingOnAppUni` says yes to, for one module; 9 for a new platform. */
  static void logLevel(const std::string& module, int level);
  static int logLevelOf(const std::string& module);

  // ---- semaphores ----

  /** Names for the next semaphores that are made; those after them are Semaphore#1, #2, ... */
  static void nameSemaphores(const std::vector<std::string>& names);

  // ---- libraries ----

  /** The script of a library, made when asked for first. One without a script does not open. */
  static Library& library(const std::string& path);
  static const Library* findLibrary(const std::string& path);

  // ---- processes ----

  /** What `ZervaVersion` answers; "7.8.9-recording" for a new platform. */
  static void setVersion(const std::string& text);
  static std::string version();

  // ---- messages ----

  /** Answers each request with this text with that reply, whatever channel it is sent to. */
  static void reply(const std::string& request, const std::string& reply);

  /** Answers requests by a function; no value for those that nobody answers. */
  static void replyWith(std::function<std::optional<std::string>(const std::string& channel,
                                                                 const std::string& request)>
                            replier);
  static std::optional<std::string> replyTo(const std::string& channel, const std::string& request);

  // ---- time ----

  /** Puts the monotonic clock forward and delivers the timer expiries that fall due. */
  static void advance(std::int64_t nanoseconds);
  /** Sets the monotonic clock without any expiry. */
  static void setMonotonic(std::int64_t seconds, std::int64_t nanoseconds);
  static std::int64_t monotonic();
  /** Sets the wall clock, which does not go by itself. */
  static void setWallClock(std::int64_t seconds, std::int64_t microseconds);
  static std::int64_t wallSeconds();
  static std::int64_t wallMicroseconds();

  /** Runs what other threads would do: spawned bodies, then messages that wait to be served. */
  static void settle();

  /** For the platform itself: runs the hooks that wait for a call. */
  static void runHooks(const std::string& text);
};

}  // namespace zerva::fakes
