// Preloaded into a program whose messages to the system log are to be seen: they go to standard
// error, since a test cannot read the log of the machine.

#include <cstdarg>
#include <cstdio>

extern "C" __attribute__((visibility("default"), format(printf, 2, 3))) void syslog(
    int priority, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::fprintf(stderr, "syslog with priority %d: ", priority);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}
