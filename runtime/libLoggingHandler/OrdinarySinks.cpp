#include "runtime/libLoggingHandler/OrdinarySinks.h"

#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/syslog_sink.h>

#include <mutex>
#include <utility>

#include "runtime/libLoggingHandler/DescriptorSink.h"
#include "runtime/libLoggingHandler/LineFormatter.h"

namespace zerva {
namespace {

spdlog::level::level_enum severity(int level) {
  if (level <= 1) return spdlog::level::critical;
  switch (level) {
    case 2:
      return spdlog::level::err;
    case 3:
      return spdlog::level::warn;
    case 4:
      return spdlog::level::info;
    case 5:
      return spdlog::level::debug;
    default:
      return spdlog::level::trace;
  }
}

}  // namespace

OrdinarySinks& OrdinarySinks::instance() {
  static auto* const sinks = new OrdinarySinks;
  return *sinks;
}

OrdinarySinks::OrdinarySinks() : standardError_(openStandardError()) {}

std::vector<OrdinarySinks::Sink> OrdinarySinks::sinks() const {
  const std::shared_lock lock(mutex_);
  std::vector<Sink> sinks;
  for (const auto& sink : {standardError_, file_, systemLog_}) {
    if (sink != nullptr) sinks.push_back(sink);
  }
  return sinks;
}

void OrdinarySinks::write(const LogRecord& record) {
  const spdlog::details::log_msg message(
      std::chrono::time_point_cast<spdlog::log_clock::duration>(record.time),
      spdlog::source_loc(record.file.c_str(), record.line, ""), record.module,
      severity(record.level), record.text);
  for (const auto& sink : sinks()) sink->log(message);
}

void OrdinarySinks::standardError(bool on) {
  Sink sink = on ? openStandardError() : nullptr;
  const std::lock_guard lock(mutex_);
  standardError_ = std::move(sink);
}

bool OrdinarySinks::file(const std::string& path, std::string& error) {
  Sink sink;
  if (!path.empty()) {
    sink = openLogFile(path, error);
    if (sink == nullptr) return false;
  }
  const std::lock_guard lock(mutex_);
  // The file before is closed when the last line that is being written to it is written.
  file_ = std::move(sink);
  return true;
}

void OrdinarySinks::systemLog(bool on) {
  const std::lock_guard lock(mutex_);
  if (on == (systemLog_ != nullptr)) return;
  if (!on) {
    systemLog_ = nullptr;
    return;
  }
  auto sink = std::make_shared<spdlog::sinks::syslog_sink_mt>("", LOG_PID, LOG_USER, true);
  sink->set_formatter(std::make_unique<LineFormatter>(LineFormatter::Style::kSystemLog));
  systemLog_ = std::move(sink);
}

void OrdinarySinks::flush() {
  for (const auto& sink : sinks()) sink->flush();
}

}  // namespace zerva
