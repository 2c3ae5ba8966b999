#include "runtime/libLoggingHandler/LogSettings.h"

#include <memory>

#include "runtime/libLoggingHandler/LogConfiguration.h"
#include "runtime/libLoggingHandler/OrdinarySinks.h"

namespace zerva {

void LogSettings::setDefaultLevel(int level) {
  LogConfiguration::instance().setDefaultLevel(level);
}

void LogSettings::setLevel(const std::string& module, int level) {
  LogConfiguration::instance().setLevel(module, level);
}

void LogSettings::logToStandardError(bool on) { OrdinarySinks::instance().standardError(on); }

bool LogSettings::logToFile(const std::string& path, std::string& error) {
  return OrdinarySinks::instance().file(path, error);
}

void LogSettings::logToSystemLog(bool on) { OrdinarySinks::instance().systemLog(on); }

void LogSettings::addSink(LogSink& sink, const std::string& module, int level) {
  LogConfiguration::instance().add(std::make_shared<SuppliedSink>(sink, module, level));
}

void LogSettings::removeSink(LogSink& sink) {
  const auto removed = LogConfiguration::instance().remove(sink);
  for (const auto& supplied : removed) supplied->close();
  LogConfiguration::instance().forget(removed);
}

void LogSettings::flush() { OrdinarySinks::instance().flush(); }

}  // namespace zerva
