#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/Patience.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/**
 * A program that a test runs, in a process group of its own, with its output captured.
 *
 * Standard input is empty. Standard output and standard error go to a file each, so that the
 * program never waits for somebody to read them. At the end everything that the program started and
 * that still runs is killed: its group, and every process that has inherited its environment.
 *
 * Used by one thread.
 */
class ChildProcess {
 public:
  /**
   * Starts the program.
   *
   * @param program Its path; a name without a slash is searched for in PATH.
   * @param arguments Without the program's own name.
   * @param environment Set in addition to what this process has.
   * @param directory Where it runs; where this process runs when empty.
   * @throws std::runtime_error naming the program when it cannot be started.
   */
  explicit ChildProcess(std::filesystem::path program, std::vector<std::string> arguments = {},
                        std::map<std::string, std::string> environment = {},
                        std::filesystem::path directory = {});
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  /** Kills what still runs and waits for the program's end. */
  ~ChildProcess();

  /** The program's process id, also after its end. */
  pid_t id() const { return process; }

  /** Sends a signal to the program alone; nothing happens after its end. */
  void signal(int number);

  /**
   * Stops the program, and waits until none of its threads does anything any more; SIGCONT makes it
   * go on. @returns false when they still ran at the deadline.
   */
  bool stop();

  /** Sends a signal to the program's whole group, as a terminal does; nothing after its end. */
  void signalGroup(int number);

  /**
   * Waits for the program to end.
   *
   * @returns Its exit code; 128 and the signal's number if a signal ended it; nothing if it still
   *         runs at the deadline. The same again when asked again.
   */
  std::optional<int> wait(std::chrono::milliseconds deadline = patience());

  /** Whether the program has not ended yet. */
  bool running();

  /** What it has written to standard output so far. */
  std::string output() const;

  /** What it has written to standard error so far. */
  std::string errors() const;

  /** Waits until standard output holds a text; false when it does not come, or the program ends. */
  bool waitForOutput(std::string_view text, std::chrono::milliseconds deadline = patience());

  /** The same for standard error. */
  bool waitForErrors(std::string_view text, std::chrono::milliseconds deadline = patience());

  /**
   * The processes that run now and came, directly or not, from this program; itself among them.
   * They are known by their environment, so one that was given an empty environment is not found.
   */
  std::vector<pid_t> survivors() const;

  /** Kills what every ChildProcess of this process has started. For the watchdog; any thread. */
  static void killAll();

 private:
  void start(const std::vector<std::string>& arguments,
             const std::map<std::string, std::string>& environment,
             const std::filesystem::path& directory);
  bool waitForText(std::string (ChildProcess::*source)() const, std::string_view text,
                   std::chrono::milliseconds deadline);

  const std::filesystem::path program;
  const std::string mark;  // an environment entry that only this program and its offspring have
  const TempDirectory captured;
  pid_t process = -1;
  std::optional<int> result;
};

}  // namespace zerva
