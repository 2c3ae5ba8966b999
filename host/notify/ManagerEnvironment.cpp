#include "host/notify/ManagerEnvironment.h"

#include <unistd.h>

#include <charconv>
#include <cstdlib>

namespace zerva {
namespace {

std::string takeVariable(const char* name) {
  const char* const value = std::getenv(name);
  std::string text = value != nullptr ? value : "";
  unsetenv(name);
  return text;
}

/** Thirty years; what is longer is never over, and could not be reckoned with. */
constexpr long long longest = 1'000'000'000'000'000;

/** @returns nothing for what is no number above zero. */
std::optional<long long> number(const std::string& text) {
  long long value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || last != end || value <= 0) return std::nullopt;
  return value;
}

}  // namespace

ManagerEnvironment ManagerEnvironment::take() {
  ManagerEnvironment environment;
  environment.socket = takeVariable("NOTIFY_SOCKET");
  const std::string process = takeVariable("WATCHDOG_PID");
  const auto time = number(takeVariable("WATCHDOG_USEC"));
  // Without a process it is for whoever has it.
  if (time && *time <= longest && (process.empty() || number(process) == getpid())) {
    environment.watchdog = std::chrono::microseconds(*time);
  }
  return environment;
}

}  // namespace zerva
