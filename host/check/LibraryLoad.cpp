#include "host/check/LibraryLoad.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <vector>

#include "framework/Dll.h"
#include "runtime/libClientUtils/LibraryDirectories.h"

namespace zerva {
namespace {

/** Where the process of its own tells how far it came; its other descriptors lead nowhere. */
constexpr int reportDescriptor = 3;
constexpr char opened = '+';
constexpr char closed = '=';
constexpr char failed = '-';
/** So much fits into a pipe that nobody reads yet. */
constexpr std::size_t longestReport = 4000;

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { close(); }

  int number() const { return number_; }
  void close() {
    if (number_ >= 0) ::close(number_);
    number_ = -1;
  }

 private:
  int number_;
};

/** Starts a program with one descriptor beside the standard three. @returns its id; 0 for none. */
pid_t startWith(int report, const std::string& program, const std::vector<std::string>& words) {
  std::vector<char*> argv;
  for (const std::string& word : words) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  sigset_t none;
  sigset_t all;
  sigemptyset(&none);
  sigfillset(&all);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setpgroup(&attributes, 0);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, report, reportDescriptor);
  for (int standard = 0; standard < reportDescriptor; ++standard) {
    posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
  }
  posix_spawn_file_actions_addclosefrom_np(&actions, reportDescriptor + 1);
  pid_t id = 0;
  const int error = posix_spawn(&id, program.c_str(), &actions, &attributes, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  return error == 0 ? id : 0;
}

/** @returns whether the process ended in time; if not, it and its whole group are ended. */
bool waitFor(pid_t id, std::chrono::milliseconds longest, int& status) {
  const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, id, 0)));
  const auto end = std::chrono::steady_clock::now() + longest;
  bool ended = false;
  while (!ended) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    if (left.count() < 0) break;
    pollfd waiting{process.number(), POLLIN, 0};
    ended = poll(&waiting, 1, static_cast<int>(left.count()) + 1) > 0;
  }
  // What it started of its own goes with it.
  kill(-id, SIGKILL);
  while (waitpid(id, &status, 0) < 0 && errno == EINTR) {
  }
  return ended;
}

std::string readAll(int descriptor) {
  std::array<char, longestReport> text;
  const ssize_t length = read(descriptor, text.data(), text.size());
  return {text.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

std::string howItEnded(int status) {
  if (WIFSIGNALED(status)) {
    const char* name = sigabbrev_np(WTERMSIG(status));
    return "it crashed (SIG" + std::string(name == nullptr ? "?" : name) + ")";
  }
  return "it ended the process with code " + std::to_string(WEXITSTATUS(status));
}

std::string secondsOf(std::chrono::milliseconds time) {
  std::string text = std::to_string(time.count() / 1000);
  if (time.count() % 1000 != 0) text += "." + std::to_string(time.count() % 1000 + 1000).substr(1);
  return text + " s";
}

void tell(const std::string& text) {
  const std::string report = text.substr(0, longestReport);
  // Whoever waits for this sees from the end of the process that it did not come.
  if (write(reportDescriptor, report.data(), report.size()) < 0) _exit(1);
}

}  // namespace

std::string loadForReal(const std::string& program, const LoadOptions& options,
                        std::chrono::milliseconds longest) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return "no pipe can be made";
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  std::vector<std::string> words = {"zerva", "load-library"};
  for (const std::string& directory : options.libraryDirectories) {
    words.insert(words.end(), {"--lib-dir", directory});
  }
  words.insert(words.end(), {"--", options.library, options.creator});
  const pid_t id = startWith(writing.number(), program, words);
  if (id == 0) return "the process for it cannot be started";
  writing.close();
  int status = 0;
  const bool inTime = waitFor(id, longest, status);
  const std::string report = readAll(reading.number());
  if (!report.empty() && report[0] == failed) return report.substr(1);
  const bool wasOpened = !report.empty() && report[0] == opened;
  const std::string when = wasOpened ? " while it was closed" : " while it was opened";
  if (!inTime) return "it was not over after " + secondsOf(longest) + when;
  if (wasOpened && report.back() == closed && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
    return {};
  }
  return howItEnded(status) + when;
}

int openForReal(const LoadOptions& options) {
  // Whoever started this waits for it, and would not see a library that hangs to its end.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  fcntl(reportDescriptor, F_SETFD, FD_CLOEXEC);
  LibraryDirectories::set(options.libraryDirectories);
  auto library = std::make_unique<Dll>(options.library);
  if (library->error() == nullptr && !options.creator.empty()) library->symbol(options.creator);
  if (library->error() != nullptr) {
    tell(failed + std::string(library->error()));
    return 0;
  }
  tell({opened});
  library.reset();
  tell({closed});
  return 0;
}

}  // namespace zerva
