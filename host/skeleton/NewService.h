#pragma once

#include <string>

namespace zerva {

/** What `zerva new service` was asked to do. */
struct NewServiceOptions {
  std::string name;
  /** The folder in which that of the service is made; empty for the current one. */
  std::string in;
};

/** @returns the part of the help that lists the exit codes of `zerva new`. */
std::string describeNewExitCodes();

/**
 * Writes the skeleton of a service into a folder of its name, and tells what to do next.
 *
 * @returns the code to exit with: 0 when it is there, 1 when nothing was written, 2 for a name that
 *     cannot be one. Why is told on standard error.
 */
int newService(const NewServiceOptions& options);

}  // namespace zerva
