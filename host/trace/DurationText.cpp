#include "host/trace/DurationText.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace zerva {

std::string durationText(std::int64_t nanoseconds) {
  struct Unit {
    double size;
    const char* name;
  };
  constexpr std::array units = {Unit{1e9, "s"}, Unit{1e6, "ms"}, Unit{1e3, "us"}};
  const auto value = static_cast<double>(nanoseconds);
  for (const Unit& unit : units) {
    // What would be rounded up to a thousand has the larger unit.
    if (std::fabs(value) < unit.size * 0.9995) continue;
    const double number = value / unit.size;
    const double size = std::fabs(number);
    const int decimals = size < 9.995 ? 2 : size < 99.95 ? 1 : 0;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.*f %s", decimals, number, unit.name);
    return text.data();
  }
  return std::to_string(nanoseconds) + " ns";
}

}  // namespace zerva
