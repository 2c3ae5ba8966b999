#pragma once

#include <cstdint>
#include <string>

#include "host/trace/RunModel.h"

namespace zerva {

/** A trace that a test writes line by line. Times are milliseconds. */
class TraceText {
 public:
  /** A trace of a directive file "a.directives" in process 10, from the time 0 on. */
  TraceText();

  /**
   * Adds a line of the host's thread, 10.
   *
   * @param fields the other fields as JSON: `"channel":"/one","duration":1000`.
   */
  TraceText& add(double at, const std::string& event, const std::string& service = "",
                 const std::string& fields = "");

  /** As above, of another thread. */
  TraceText& addOn(int thread, double at, const std::string& event, const std::string& service,
                   const std::string& fields = "");

  /** An immediate service comes up: a millisecond each for the library, the creator, the executor
   * and the announcement, and then its `init`. */
  TraceText& immediate(double at, const std::string& service, double init);

  /** The start was over. */
  TraceText& running(double at) { return add(at, "phase", "", R"("phase":"running")"); }

  const std::string& text() const { return text_; }

  /** @returns what it tells. */
  RunModel run() const;

 private:
  std::string text_;
};

/** @returns a field that is a time. */
std::string duration(double milliseconds);

constexpr std::int64_t operator""_ms(unsigned long long milliseconds) {
  return static_cast<std::int64_t>(milliseconds) * 1'000'000;
}

/** @returns the path of a file beside the tests. */
std::string traceFile(const std::string& name);

}  // namespace zerva
