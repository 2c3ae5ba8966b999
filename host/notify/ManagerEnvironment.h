#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace zerva {

/** What a service manager tells the process that it starts. */
struct ManagerEnvironment {
  /** Where it listens; empty when there is no manager. */
  std::string socket;
  /** After how much time without a sign of life it ends the process; nothing: it does not look. */
  std::optional<std::chrono::microseconds> watchdog;

  /**
   * Reads it and takes it out of the environment, since it is not meant for those that this process
   * starts. Called before there are threads.
   */
  static ManagerEnvironment take();
};

}  // namespace zerva
