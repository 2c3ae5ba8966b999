#pragma once

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "framework/Process.h"
#include "runtime/libClientUtils/StartedProcesses.h"
#include "tests/platform/Libraries.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

extern char** environ;

namespace zerva {

/** Starts processes and ends them again. */
class ProcessWorld : public testing::Test {
 protected:
  ~ProcessWorld() override { StartedProcesses::terminateAll(std::chrono::milliseconds(0)); }

  static std::unique_ptr<Process> start(std::vector<std::string> arguments,
                                        char** environment = environ, char* where = nullptr) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    return std::make_unique<Process>(static_cast<int>(arguments.size()), argv.data(), environment,
                                     where);
  }

  /** Starts the probe and waits for its report. */
  std::unique_ptr<Process> startProbe(const std::string& report,
                                      const std::vector<std::string>& what = {}) const {
    std::vector<std::string> arguments{probe, directory.file(report)};
    arguments.insert(arguments.end(), what.begin(), what.end());
    auto process = start(arguments);
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(directory.file(report)); }));
    return process;
  }

  std::string reportOf(const std::string& report) const { return readFile(directory.file(report)); }

  /** What the list says of a process; an id of 0 when it does not say anything. */
  static StartedProcess entryOf(int id) {
    for (const StartedProcess& process : StartedProcesses::list()) {
      if (process.id == id) return process;
    }
    return {0, "", false, -1, 0};
  }

  static bool ended(int id) {
    return waitUntil([id] { return !entryOf(id).running; });
  }

  /** Whether the system still knows a process, be it one that has ended and was not reaped. */
  static bool known(int id) { return ::kill(id, 0) == 0; }

  const std::string probe = programDirectory() / "platform_process_probe";
  const TempDirectory directory;
};

}  // namespace zerva
