#include "host/live/LiveBus.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "runtime/libClientUtils/ReplyTimeout.h"

namespace zerva {
namespace {

std::string existing(const std::string& directory) {
  std::string wanted = directory;
  if (wanted.empty()) {
    // Only this thread is there yet.
    const char* const set = ::getenv("ZERVA_BUS");  // NOLINT(concurrency-mt-unsafe)
    if (set != nullptr) wanted = set;
  }
  if (wanted.empty()) {
    throw std::runtime_error("which bus? Say it with --bus DIR or ZERVA_BUS in the environment");
  }
  std::error_code error;
  if (!std::filesystem::is_directory(wanted, error)) {
    throw std::runtime_error("there is no bus: " + wanted + " is no directory");
  }
  return wanted;
}

}  // namespace

LiveBus::LiveBus(const std::string& directory, std::chrono::milliseconds patience)
    : bus_(existing(directory)) {
  setReplyTimeout(patience);
}

}  // namespace zerva
