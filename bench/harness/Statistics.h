#pragma once

#include <vector>

namespace zerva::bench {

/** One value for each round. */
using Rounds = std::vector<double>;

/** @returns the value in the middle; the mean of the two in the middle when their number is even.
 */
double median(Rounds values);

/** @returns the first divided by the second, round by round. */
Rounds ratios(const Rounds& values, const Rounds& by);

/** @returns the first without the second, round by round. */
Rounds differences(const Rounds& values, const Rounds& without);

/** @returns each value multiplied. */
Rounds scaled(Rounds values, double factor);

}  // namespace zerva::bench
