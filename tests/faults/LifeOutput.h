#pragma once

#include <string>
#include <vector>

namespace zerva {

/** What a life of a host has written, and what follows from it. */
class LifeOutput {
 public:
  /** @param registryHere whether the registry and the start of the second host were its own. */
  LifeOutput(std::string output, std::string errors, bool registryHere);

  /** @returns what a life without a fault does and this one did not; empty when it did all. */
  std::string lost() const;

  /**
   * @returns whether somebody is told that something failed: by an error or a warning in the log, a
   *     complaint of the host, or the text of the exception that a caller got. What the fault
   *     itself and the watchdog say does not count, and neither does what the callers conclude.
   */
  bool tells() const;

  /**
   * @param someAreLost whether a service that was made and never initialised may be nobody's.
   * @returns what is wrong with how the services went down; empty when each that came up was
   *     stopped and deleted, once, and in the order of a life without a fault.
   */
  std::string disorder(bool someAreLost) const;

  /** @returns the same of the second host, which meets no fault of its own. */
  static std::string disorderOfSecond(const std::string& output);

 private:
  const std::string output_;
  const std::string errors_;
  const bool registryHere_;
};

}  // namespace zerva
