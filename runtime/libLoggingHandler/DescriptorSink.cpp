#include "runtime/libLoggingHandler/DescriptorSink.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "runtime/libLoggingHandler/JournalStream.h"
#include "runtime/libLoggingHandler/LineFormatter.h"

namespace zerva {
namespace {

/** @returns 0, or the error that stopped the writing. */
int writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      pollfd ready{descriptor, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace

DescriptorSink::DescriptorSink(int descriptor, std::string path,
                               std::unique_ptr<spdlog::formatter> formatter)
    : base_sink(std::move(formatter)), descriptor_(descriptor), path_(std::move(path)) {}

DescriptorSink::~DescriptorSink() {
  if (!path_.empty()) ::close(descriptor_);
}

void DescriptorSink::sink_it_(const spdlog::details::log_msg& message) {
  spdlog::memory_buf_t line;
  formatter_->format(message, line);
  const int error = writeAll(descriptor_, {line.data(), line.size()});
  if (error != 0) reportFailure(error);
}

void DescriptorSink::flush_() {
  // Nothing is ever held back; taking the lock has waited for the line under way.
}

void DescriptorSink::reportFailure(int error) {
  if (failureReported_ || path_.empty()) return;
  failureReported_ = true;
  writeAll(STDERR_FILENO, fmt::format("Lines of the log file '{}' are lost: {}\n", path_,
                                      std::generic_category().message(error)));
}

std::shared_ptr<spdlog::sinks::sink> openStandardError() {
  const auto style =
      leadsToJournal(STDERR_FILENO) ? LineFormatter::Style::kJournal : LineFormatter::Style::kPlain;
  return std::make_shared<DescriptorSink>(STDERR_FILENO, "",
                                          std::make_unique<LineFormatter>(style));
}

std::shared_ptr<spdlog::sinks::sink> openLogFile(const std::string& path, std::string& error) {
  constexpr mode_t kReadableByAll = 0644;
  const int descriptor =
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, kReadableByAll);
  if (descriptor < 0) {
    error = fmt::format("{}: {}", path, std::generic_category().message(errno));
    return nullptr;
  }
  return std::make_shared<DescriptorSink>(
      descriptor, path, std::make_unique<LineFormatter>(LineFormatter::Style::kPlain));
}

}  // namespace zerva
