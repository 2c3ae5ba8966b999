#include "runtime/libClientUtils/bus/BusId.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <random>

namespace zerva {

namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kRandomDigits = 16;
// A process id has at most seven digits.
constexpr std::size_t kLongestProcess = 7;

std::string_view processPart(std::string_view id) { return id.substr(0, id.find('-')); }

}  // namespace

std::string newBusId() {
  std::random_device random;
  std::uniform_int_distribution<std::size_t> digit(0, kDigits.size() - 1);
  std::string id = std::to_string(::getpid()) + "-";
  for (std::size_t i = 0; i < kRandomDigits; ++i) {
    id += kDigits[digit(random)];
  }
  return id;
}

bool isBusId(std::string_view text) {
  const std::string_view process = processPart(text);
  if (process.empty() || process.size() > kLongestProcess ||
      text.size() != process.size() + 1 + kRandomDigits || process.front() == '0') {
    return false;
  }
  const std::string_view digits = text.substr(process.size() + 1);
  return process.find_first_not_of("0123456789") == std::string_view::npos &&
         digits.find_first_not_of(kDigits) == std::string_view::npos;
}

int processOf(std::string_view id) {
  const std::string_view digits = processPart(id);
  int process = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), process);
  return process;
}

std::string describeProcess(std::string_view id) {
  return "process " + std::string(processPart(id));
}

}  // namespace zerva
