#include "bench/ours/Names.h"

#include <algorithm>
#include <random>
#include <stdexcept>

#include "bench/ours/World.h"

namespace zerva::bench {

Names::Names(int services) {
  for (int i = 0; i < services; ++i) names_.push_back(interfaceName(i));
  // The same order each time.
  std::shuffle(names_.begin(), names_.end(), std::minstd_rand(1));  // NOLINT(cert-msc51-cpp)
}

void Names::expectAll(std::size_t found) {
  if (found != kLookUps) throw std::runtime_error("some names were not found");
}

}  // namespace zerva::bench
