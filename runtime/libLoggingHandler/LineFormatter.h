#pragma once

#include <spdlog/formatter.h>
#include <spdlog/pattern_formatter.h>

#include <memory>

namespace zerva {

/** Makes the text of a log line for one kind of reader. */
class LineFormatter : public spdlog::formatter {
 public:
  enum class Style {
    /** For people: time, level, module, source, text; further lines of a text are indented. */
    kPlain,
    /** For the journal, which notes the time itself: each line begins with its priority. */
    kJournal,
    /** For the system log, which takes time and priority beside the text. */
    kSystemLog
  };

  explicit LineFormatter(Style style);

  void format(const spdlog::details::log_msg& message, spdlog::memory_buf_t& line) override;
  std::unique_ptr<spdlog::formatter> clone() const override;

 private:
  const Style style_;
  spdlog::pattern_formatter time_;
};

}  // namespace zerva
