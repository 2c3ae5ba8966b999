#include "runtime/libLoggingHandler/LineFormatter.h"

#include <fmt/format.h>
#include <syslog.h>

#include <iterator>
#include <string>
#include <string_view>

namespace zerva {
namespace {

struct Severity {
  std::string_view name;
  int priority;
};

Severity severityOf(spdlog::level::level_enum level) {
  switch (level) {
    case spdlog::level::critical:
      return {"fatal", LOG_CRIT};
    case spdlog::level::err:
      return {"error", LOG_ERR};
    case spdlog::level::warn:
      return {"warning", LOG_WARNING};
    case spdlog::level::info:
      return {"info", LOG_INFO};
    case spdlog::level::debug:
      return {"progress", LOG_DEBUG};
    default:
      return {"detail", LOG_DEBUG};
  }
}

/** Writes a text of one or more lines; `between` comes before each but the first. */
void appendLines(std::string_view text, std::string_view between, spdlog::memory_buf_t& line) {
  for (auto end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    line.append(text.substr(0, end));
    line.push_back('\n');
    line.append(between);
    text.remove_prefix(end + 1);
  }
  line.append(text);
}

}  // namespace

LineFormatter::LineFormatter(Style style)
    : style_(style),
      time_("%Y-%m-%d %H:%M:%S.%e ", spdlog::pattern_time_type::local, std::string()) {}

void LineFormatter::format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& line) {
  const Severity severity = severityOf(message.level);
  const std::string_view text(message.payload.data(), message.payload.size());
  std::string between = "    ";
  if (style_ == Style::kPlain) {
    time_.format(message, line);
    fmt::format_to(std::back_inserter(line), "{:<8} ", severity.name);
  } else if (style_ == Style::kJournal) {
    const std::string priority = fmt::format("<{}>", severity.priority);
    line.append(priority);
    between.insert(0, priority);
  }
  fmt::format_to(std::back_inserter(line), "[{}] {}:{} ", message.logger_name,
                 message.source.filename, message.source.line);
  appendLines(text, between, line);
  if (style_ != Style::kSystemLog) line.push_back('\n');
}

std::unique_ptr<spdlog::formatter> LineFormatter::clone() const {
  return std::make_unique<LineFormatter>(style_);
}

}  // namespace zerva
