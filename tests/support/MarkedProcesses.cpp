#include "tests/support/MarkedProcesses.h"

#include <unistd.h>

#include <cctype>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>

#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

std::filesystem::path folderOf(pid_t id) {
  return std::filesystem::path{"/proc"} / std::to_string(id);
}

/** All process ids but this process's own. */
std::vector<pid_t> otherProcesses() {
  std::vector<pid_t> found;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator{"/proc", ignored}) {
    const std::string name = entry.path().filename().string();
    if (std::isdigit(static_cast<unsigned char>(name.front())) == 0) continue;
    if (const pid_t id = std::stoi(name); id != getpid()) found.push_back(id);
  }
  return found;
}

/** Whether it is a program that runs: not one that has ended, and no thread of the kernel. */
bool isRunningProgram(pid_t id) {
  std::ifstream stream{folderOf(id) / "stat"};
  std::string line;
  std::getline(stream, line);
  const auto name = line.rfind(')');
  if (name == std::string::npos) return false;
  std::istringstream fields{line.substr(name + 1)};
  char state = 'Z';
  long skipped = 0;
  unsigned long flags = 0;
  fields >> state >> skipped >> skipped >> skipped >> skipped >> skipped >> flags;
  constexpr unsigned long kernelThread = 0x00200000;
  return state != 'Z' && state != 'X' && (flags & kernelThread) == 0;
}

/** Nothing where it may not be read: then the process is another user's, and none of ours. */
std::optional<std::string> environmentOf(pid_t id) {
  std::ifstream stream{folderOf(id) / "environ", std::ios::binary};
  if (!stream) return std::nullopt;
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/**
 * A process that is about to become another program shows no environment for a moment, and a scan
 * at that moment would miss it; so an empty one is looked at again for a while.
 */
std::string settledEnvironmentOf(pid_t id) {
  std::optional<std::string> environment;
  waitUntil(
      [&] {
        environment = environmentOf(id);
        return !environment || !environment->empty() || !isRunningProgram(id);
      },
      std::chrono::milliseconds{50});
  return environment.value_or("");
}

bool hasEntry(const std::string& environment, std::string_view mark) {
  std::istringstream stream{environment};
  for (std::string entry; std::getline(stream, entry, '\0');) {
    if (entry.starts_with(mark)) return true;
  }
  return false;
}

}  // namespace

std::vector<pid_t> markedProcesses(std::string_view mark) {
  std::vector<pid_t> found;
  for (const pid_t id : otherProcesses()) {
    if (hasEntry(settledEnvironmentOf(id), mark)) found.push_back(id);
  }
  return found;
}

void killMarked(std::string_view mark) {
  for (const pid_t id : markedProcesses(mark)) kill(id, SIGKILL);
}

}  // namespace zerva
