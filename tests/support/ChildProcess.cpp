#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "tests/support/FileText.h"
#include "tests/support/MarkedProcesses.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

constexpr std::string_view markName = "ZERVA_TEST_CHILD_OF";

/** The part of the mark that all children of this process share. */
std::string markOfThisProcess() { return std::string{markName} + "=" + std::to_string(getpid()); }

std::string nextMark() {
  static std::atomic<int> count{0};
  return markOfThisProcess() + "." + std::to_string(++count) + ".";
}

/** Texts in the form in which programs are given them; the texts must stay. */
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/** This process's environment with entries added or replaced. */
std::vector<std::string> environmentWith(const std::map<std::string, std::string>& added) {
  std::vector<std::string> entries;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text{*entry};
    const std::string name = text.substr(0, text.find('='));
    if (added.count(name) == 0 && name != markName) entries.push_back(text);
  }
  for (const auto& [name, value] : added) entries.push_back(name + "=" + value);
  return entries;
}

/** How the new process differs from this one: its streams, directory, group and signals. */
class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(
        &attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
  }

  void sendTo(int descriptor, const std::filesystem::path& file) {
    posix_spawn_file_actions_addopen(&actions, descriptor, file.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
  }

  posix_spawn_file_actions_t actions{};
  posix_spawnattr_t attributes{};
};

}  // namespace

ChildProcess::ChildProcess(std::filesystem::path program_, std::vector<std::string> arguments,
                           std::map<std::string, std::string> environment,
                           std::filesystem::path directory)
    : program{std::move(program_)}, mark{nextMark()} {
  start(arguments, environment, directory);
}

void ChildProcess::start(const std::vector<std::string>& arguments,
                         const std::map<std::string, std::string>& environment,
                         const std::filesystem::path& directory) {
  SpawnSettings settings;
  // First, so that the program's path and its streams are what the caller meant.
  settings.sendTo(STDOUT_FILENO, captured.file("out"));
  settings.sendTo(STDERR_FILENO, captured.file("err"));
  posix_spawn_file_actions_addopen(&settings.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addclosefrom_np(&settings.actions, STDERR_FILENO + 1);
  if (!directory.empty()) {
    posix_spawn_file_actions_addchdir_np(&settings.actions, directory.c_str());
  }

  std::vector<std::string> words{program.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> entries = environmentWith(environment);
  entries.push_back(mark);
  const int error = posix_spawnp(&process, program.c_str(), &settings.actions, &settings.attributes,
                                 pointersTo(words).data(), pointersTo(entries).data());
  if (error != 0) {
    throw std::runtime_error{"cannot start " + program.string() + ": " + std::strerror(error)};
  }
}

ChildProcess::~ChildProcess() {
  signalGroup(SIGKILL);
  // A process that is just starting another one can leave one more behind.
  while (!survivors().empty()) {
    killMarked(mark);
    running();
  }
  wait();
}

void ChildProcess::signal(int number) {
  if (running()) kill(process, number);
}

bool ChildProcess::stop() {
  signal(SIGSTOP);
  const std::filesystem::path threads = "/proc/" + std::to_string(process) + "/task";
  return waitUntil([&] {
    for (const auto& thread : std::filesystem::directory_iterator(threads)) {
      if (readFile(thread.path() / "stat").find(") T ") == std::string::npos) return false;
    }
    return true;
  });
}

void ChildProcess::signalGroup(int number) {
  if (running()) kill(-process, number);
}

std::optional<int> ChildProcess::wait(std::chrono::milliseconds deadline) {
  waitUntil([this] { return !running(); }, deadline);
  return result;
}

bool ChildProcess::running() {
  int status = 0;
  if (!result && waitpid(process, &status, WNOHANG) == process) {
    result = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }
  return !result;
}

std::string ChildProcess::output() const { return readFile(captured.file("out")); }

std::string ChildProcess::errors() const { return readFile(captured.file("err")); }

bool ChildProcess::waitForOutput(std::string_view text, std::chrono::milliseconds deadline) {
  return waitForText(&ChildProcess::output, text, deadline);
}

bool ChildProcess::waitForErrors(std::string_view text, std::chrono::milliseconds deadline) {
  return waitForText(&ChildProcess::errors, text, deadline);
}

bool ChildProcess::waitForText(std::string (ChildProcess::*source)() const, std::string_view text,
                               std::chrono::milliseconds deadline) {
  const auto written = [&] { return (this->*source)().find(text) != std::string::npos; };
  waitUntil([&] { return written() || !running(); }, deadline);
  return written();
}

std::vector<pid_t> ChildProcess::survivors() const { return markedProcesses(mark); }

void ChildProcess::killAll() { killMarked(markOfThisProcess() + "."); }

}  // namespace zerva
