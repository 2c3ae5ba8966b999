#pragma once

#include <time.h>

#include <chrono>

namespace zerva::bench {

using Clock = std::chrono::steady_clock;

/** Microseconds since it was made. */
class Stopwatch {
 public:
  double microseconds() const {
    return std::chrono::duration<double, std::micro>(Clock::now() - start_).count();
  }
  double nanoseconds() const { return microseconds() * 1000.0; }

 private:
  Clock::time_point start_ = Clock::now();
};

/** @returns the time in microseconds that all threads of this process have had a processor. */
inline double processorMicroseconds() {
  timespec time{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) / 1e3;
}

}  // namespace zerva::bench
