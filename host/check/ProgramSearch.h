#pragma once

#include <string>
#include <vector>

namespace zerva {

/** Finds programs where `start_process` would, on this machine or in the tree of another one. */
class ProgramSearch {
 public:
  /**
   * @param root the other machine's tree; empty for this machine.
   * @param path where programs named without a slash are, in the form of PATH.
   */
  ProgramSearch(std::string root, const std::string& path);

  /** @returns the file that is started; empty when there is none. */
  std::string find(const std::string& program) const;

  /** @returns why this program cannot be started; empty when it can be. */
  std::string whyNot(const std::string& program) const;

  /** @returns the names of all that can be started without a slash, without order. */
  std::vector<std::string> names() const;

 private:
  std::vector<std::string> places(const std::string& program) const;

  std::string root_;
  std::vector<std::string> directories_;
};

}  // namespace zerva
