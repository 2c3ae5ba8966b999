// One life of a host in which one call of the system fails.
//
//   faulty_life KIND N FILE BUS SECONDS MORE [CHANNEL]
//
// Runs FILE as `zerva run` does, on the bus in the directory BUS, for SECONDS at most; when CHANNEL
// is served, if one is given. The Nth call of KIND fails; none when N is 0. Ends as `zerva` does,
// and with the watchdog's code when it is not down after MORE seconds; the last line tells how many
// calls of that kind there were.
//
// Two kinds are no calls: "descriptors" is a limit of N on open files, "space" one of N KiB on the
// address space beyond what the program has when it begins.

#include <execinfo.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "host/Run.h"
#include "host/RunOptions.h"
#include "host/SignalThread.h"
#include "runtime/libClientUtils/ExceptionText.h"
#include "tests/faults/Fault.h"
#include "tests/support/Watchdog.h"

namespace {

zerva::RunOptions optionsFrom(int argc, char** argv) {
  const std::filesystem::path build =
      std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path();
  zerva::RunOptions options;
  options.file = argv[3];
  options.bus = argv[4];
  options.duration = std::chrono::seconds(std::atoi(argv[5]));
  options.libraryDirectories = {build / "plugins", build / "lib"};
  if (argc > 7) options.awaited.push_back({argv[7], std::chrono::seconds(20)});
  if (zerva::fault::kindOf(argv[1]) == zerva::fault::Kind::Clock) {
    options.replyTimeout = std::chrono::seconds(2);
  } else if (std::strcmp(argv[1], "space") == 0) {
    // Of a thread that gets no memory at all nobody hears anything.
    options.replyTimeout = std::chrono::milliseconds(300);
  }
  options.stopTimeout = std::chrono::seconds(3);
  return options;
}

/** Started programs have the same limit. */
void limit(const std::string& what, rlim_t amount) {
  if (what == "descriptors") {
    const rlimit files{amount, amount};
    setrlimit(RLIMIT_NOFILE, &files);
  } else if (what == "space") {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t bytes = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + amount * 1024;
    const rlimit space{bytes, RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &space);
  }
}

/** Tells where an exception ended the process that nobody was there to take. */
[[noreturn]] void tellAndAbort() {
  constexpr std::string_view kText = "ended by an exception, here:\n";
  static_cast<void>(!write(STDERR_FILENO, kText.data(), kText.size()));
  std::array<void*, 64> frames{};
  backtrace_symbols_fd(frames.data(), backtrace(frames.data(), frames.size()), STDERR_FILENO);
  std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 7) return static_cast<int>(zerva::ExitCode::Usage);
  const sigset_t signals = zerva::blockEndingSignals();
  const zerva::fault::Kind kind = zerva::fault::kindOf(argv[1]);
  const zerva::RunOptions options = optionsFrom(argc, argv);
  zerva::Watchdog watchdog;
  watchdog.set(std::string("a life with ") + argv[1] + " " + argv[2],
               options.duration.value() + std::chrono::seconds(std::atoi(argv[6])));
  // The first walk of a stack loads a library, for which there may be no room later.
  void* none = nullptr;
  backtrace(&none, 1);
  std::set_terminate(tellAndAbort);
  limit(argv[1], std::strtoul(argv[2], nullptr, 10));
  zerva::fault::choose(kind, std::atol(argv[2]));
  zerva::ExitCode code = zerva::ExitCode::Unexpected;
  zerva::fault::count(true);
  try {
    code = zerva::run(options, signals);
  } catch (...) {
    std::fprintf(stderr, "zerva: %s\n", zerva::currentExceptionText().c_str());
  }
  zerva::fault::count(false);
  std::printf("calls %ld\n", zerva::fault::calls());
  return static_cast<int>(code);
}
