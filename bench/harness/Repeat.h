#pragma once

#include "bench/harness/Clock.h"
#include "bench/harness/Isolated.h"
#include "bench/harness/Statistics.h"

namespace zerva::bench {

/**
 * Does something a number of times, after a tenth of that for caches to fill.
 *
 * @returns the mean in microseconds, and the median of all.
 */
template <typename What>
Figures repeat(int times, const What& what) {
  for (int i = 0; i < times / 10 + 1; ++i) what();
  const Stopwatch whole;
  for (int i = 0; i < times; ++i) what();
  const double mean = whole.microseconds() / times;

  Rounds each;
  each.reserve(static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) {
    const Stopwatch one;
    what();
    each.push_back(one.microseconds());
  }
  return {mean, median(std::move(each))};
}

}  // namespace zerva::bench
