#include "bench/harness/Statistics.h"

#include <algorithm>
#include <cstddef>
#include <functional>

namespace zerva::bench {

namespace {

Rounds combined(const Rounds& left, const Rounds& right,
                const std::function<double(double, double)>& combine) {
  Rounds result;
  const std::size_t count = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < count; ++i) result.push_back(combine(left[i], right[i]));
  return result;
}

}  // namespace

double median(Rounds values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 != 0 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Rounds ratios(const Rounds& values, const Rounds& by) {
  return combined(values, by, std::divides<>());
}

Rounds differences(const Rounds& values, const Rounds& without) {
  return combined(values, without, std::minus<>());
}

Rounds scaled(Rounds values, double factor) {
  for (double& value : values) value *= factor;
  return values;
}

}  // namespace zerva::bench
