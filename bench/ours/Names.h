#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/harness/Clock.h"

namespace zerva::bench {

/** The interface names of so many services, in an order that has nothing to do with theirs. */
class Names {
 public:
  explicit Names(int services);

  const std::vector<std::string>& all() const { return names_; }

  /**
   * Looks names up again and again.
   *
   * @param find looks one up. @returns whether it is there.
   * @returns the mean of all, in nanoseconds.
   * @throws std::runtime_error when one is not there.
   */
  template <typename Find>
  double nanosecondsEach(const Find& find) const {
    std::size_t found = 0;
    const Stopwatch watch;
    for (std::size_t i = 0; i < kLookUps; ++i) found += find(names_[i % names_.size()]) ? 1 : 0;
    const double each = watch.nanoseconds() / kLookUps;
    expectAll(found);
    return each;
  }

 private:
  static constexpr std::size_t kLookUps = 200000;

  static void expectAll(std::size_t found);

  std::vector<std::string> names_;
};

}  // namespace zerva::bench
