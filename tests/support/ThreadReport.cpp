#include "tests/support/ThreadReport.h"

#include <execinfo.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

std::atomic<bool> stackWritten{false};

void writeOwnStack(int) {
  std::array<void*, 64> frames{};
  const int depth = backtrace(frames.data(), static_cast<int>(frames.size()));
  backtrace_symbols_fd(frames.data(), depth, STDERR_FILENO);
  stackWritten = true;
}

/** The report is to come out in any case, and most of all where memory is what there is too little
 * of. */
void takeBackLimitOfAddressSpace() {
  rlimit space{};
  if (getrlimit(RLIMIT_AS, &space) != 0) return;
  space.rlim_cur = space.rlim_max;
  setrlimit(RLIMIT_AS, &space);
}

std::string firstLineOf(const std::filesystem::path& file) {
  std::ifstream stream{file};
  std::string line;
  std::getline(stream, line);
  return line;
}

std::string stateOf(const std::filesystem::path& task) {
  std::ifstream stream{task / "status"};
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("State:")) return line.substr(line.find('\t') + 1);
  }
  return "unknown";
}

}  // namespace

void reportThreads() {
  takeBackLimitOfAddressSpace();

  // The first walk of a stack loads a library, and so allocates, which a handler must not do.
  void* none = nullptr;
  backtrace(&none, 1);

  struct sigaction action {};
  action.sa_handler = writeOwnStack;
  action.sa_flags = SA_RESTART;
  sigaction(SIGRTMAX, &action, nullptr);

  std::error_code error;
  for (const auto& task : std::filesystem::directory_iterator{"/proc/self/task", error}) {
    const int id = std::stoi(task.path().filename().string());
    std::fprintf(stderr, "thread %d \"%s\" %s, waits in %s\n", id,
                 firstLineOf(task.path() / "comm").c_str(), stateOf(task.path()).c_str(),
                 firstLineOf(task.path() / "wchan").c_str());
    stackWritten = false;
    if (syscall(SYS_tgkill, getpid(), id, SIGRTMAX) == 0) {
      waitUntil([] { return stackWritten.load(); }, std::chrono::seconds{1});
    }
  }
  if (error) std::fprintf(stderr, "the threads cannot be listed: %s\n", error.message().c_str());
}

}  // namespace zerva
