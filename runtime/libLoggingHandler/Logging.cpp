#include "framework/Logging.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <string>

#include "runtime/libLoggingHandler/LogConfiguration.h"
#include "runtime/libLoggingHandler/OrdinarySinks.h"

namespace {

/** Logging is done between a failed call and the look at its error. */
class KeptErrno {
 public:
  KeptErrno() : value_(errno) {}
  ~KeptErrno() { errno = value_; }
  KeptErrno(const KeptErrno&) = delete;
  KeptErrno& operator=(const KeptErrno&) = delete;

 private:
  const int value_;
};

const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

__attribute__((format(printf, 1, 0))) std::string formatted(const char* format, va_list arguments) {
  va_list again;
  va_copy(again, arguments);
  char shortText[512];
  const int length = std::vsnprintf(shortText, sizeof shortText, format, arguments);
  std::string text;
  if (length < 0) {
    text = std::string("(a text that cannot be formatted) ") + format;
  } else if (static_cast<std::size_t>(length) < sizeof shortText) {
    text.assign(shortText, static_cast<std::size_t>(length));
  } else {
    text.resize(static_cast<std::size_t>(length));
    std::vsnprintf(text.data(), text.size() + 1, format, again);
  }
  va_end(again);
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

void write(const zerva::LogRecord& record) {
  const auto receivers = zerva::LogConfiguration::instance().receivers(record.module, record.level);
  if (receivers.ordinary) zerva::OrdinarySinks::instance().write(record);
  for (const auto& sink : receivers.supplied) sink->write(record);
}

}  // namespace

void logAppUni(const char* module, const char* file, int level, int line, const char* format, ...) {
  const KeptErrno kept;
  va_list arguments;
  va_start(arguments, format);
  try {
    zerva::LogRecord record;
    record.module = orEmpty(module);
    record.file = orEmpty(file);
    record.level = level;
    record.line = line;
    record.text = formatted(format, arguments);
    record.time = std::chrono::system_clock::now();
    write(record);
  } catch (const std::exception& exception) {
    // Whoever logs, destructors among them, does not expect an exception; the line is all we lose.
    std::fprintf(stderr, "A log line of '%s' is lost: %s\n", orEmpty(module), exception.what());
  }
  va_end(arguments);
}

bool loggingOnAppUni(const char* module, int level) {
  return zerva::LogConfiguration::isOn(orEmpty(module), level);
}
