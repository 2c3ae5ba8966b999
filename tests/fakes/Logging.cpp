#include "framework/Logging.h"

#include <cstdarg>
#include <string>

#include "tests/fakes/Platform.h"
#include "tests/fakes/Text.h"

using zerva::fakes::inQuotes;

void logAppUni(const char* module, const char* file, int level, int line, const char* format, ...) {
  std::va_list list;
  va_start(list, format);
  const zerva::fakes::Formatted made = zerva::fakes::formatted(format, list);
  va_end(list);
  std::string text = "log(" + inQuotes(module) + ", " + inQuotes(file) + ", " +
                     std::to_string(level) + (line > 0 ? "" : ", no line") + ", " +
                     inQuotes(format);
  for (const std::string& argument : made.arguments) text += ", " + argument;
  zerva::fakes::Trace::record(text + ")", made.text, line);
}

bool loggingOnAppUni(const char* module, int level) {
  const bool on = level <= zerva::fakes::Platform::logLevelOf(module);
  zerva::fakes::Trace::record("loggingOn(" + inQuotes(module) + ", " + std::to_string(level) +
                              ") -> " + (on ? "true" : "false"));
  return on;
}
