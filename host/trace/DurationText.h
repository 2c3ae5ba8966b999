#pragma once

#include <cstdint>
#include <string>

namespace zerva {

/** @returns a time of so many nanoseconds for people, with three digits: "1.25 ms", "980 ns". */
std::string durationText(std::int64_t nanoseconds);

}  // namespace zerva
