// The calls to the system library that the code under test makes. They reach this file instead of
// the system library because the code under test is linked with --wrap for each of them. Code that
// is built for 64-bit time on a 32-bit system uses the names with "64".

#include <sys/time.h>
#include <time.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Text.h"

using zerva::fakes::inQuotes;
using zerva::fakes::Platform;
using zerva::fakes::Trace;

extern "C" {

int __wrap_clock_gettime(clockid_t clock, timespec* result) {
  Trace::record(clock == CLOCK_MONOTONIC ? "clock_gettime(CLOCK_MONOTONIC)"
                                         : "clock_gettime(" + std::to_string(clock) + ")");
  constexpr std::int64_t kSecond = 1'000'000'000;
  result->tv_sec = static_cast<time_t>(Platform::monotonic() / kSecond);
  result->tv_nsec = static_cast<long>(Platform::monotonic() % kSecond);
  return 0;
}

int __wrap___clock_gettime64(clockid_t clock, timespec* result) {
  return __wrap_clock_gettime(clock, result);
}

int __wrap_gettimeofday(timeval* result, void* zone) {
  Trace::record(zone == nullptr ? "gettimeofday()" : "gettimeofday(zone)");
  result->tv_sec = static_cast<time_t>(Platform::wallSeconds());
  result->tv_usec = static_cast<suseconds_t>(Platform::wallMicroseconds());
  return 0;
}

int __wrap___gettimeofday64(timeval* result, void* zone) {
  return __wrap_gettimeofday(result, zone);
}

tm* __wrap_localtime(const time_t* seconds) {
  Trace::record("localtime(" + std::to_string(*seconds) + ")");
  return localtime(seconds);
}

tm* __wrap___localtime64(const time_t* seconds) { return __wrap_localtime(seconds); }

int __wrap_vprintf(const char* format, std::va_list list) {
  const std::string text = zerva::fakes::formatted(format, list).text;
  Trace::record("printed " + inQuotes(text), text);
  return static_cast<int>(text.size());
}

int __wrap_printf(const char* format, ...) {
  std::va_list list;
  va_start(list, format);
  const int length = __wrap_vprintf(format, list);
  va_end(list);
  return length;
}

int __wrap_puts(const char* text) {
  Trace::record("printed " + inQuotes(std::string(text) + "\n"), std::string(text) + "\n");
  return 1;
}

int __wrap_putchar(int character) {
  Trace::record("printed " + inQuotes(std::string(1, static_cast<char>(character))));
  return character;
}

void __wrap_vsyslog(int priority, const char* format, std::va_list list) {
  const zerva::fakes::Formatted made = zerva::fakes::formatted(format, list);
  std::string text = "syslog(" + std::to_string(priority) + ", " + inQuotes(format);
  for (const std::string& argument : made.arguments) text += ", " + argument;
  Trace::record(text + ")", made.text);
}

void __wrap_syslog(int priority, const char* format, ...) {
  std::va_list list;
  va_start(list, format);
  __wrap_vsyslog(priority, format, list);
  va_end(list);
}

}  // extern "C"
