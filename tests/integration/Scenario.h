#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zerva {

/** One line of a scenario: what is done, or what must come. */
struct ScenarioStep {
  std::string verb;
  std::string argument;
};

/**
 * A run of a whole program, as its folder describes it. The file `scenario` has a line a step, in
 * the form "verb: argument", in the order in which they are done; the files `stdout` and `stderr`,
 * where they are there, say what the program must have written. Files with a name behind that, as
 * `stdout.buoy`, say what one of several processes must have written in between.
 *
 * Names in angle brackets stand for paths and numbers that differ from machine to machine.
 */
class Scenario {
 public:
  /** @throws std::runtime_error when the folder has no scenario, or one that cannot be read. */
  Scenario(std::filesystem::path folder, std::map<std::string, std::string> names);

  const std::vector<ScenarioStep>& steps() const { return steps_; }

  /** @returns the lines that a file of the folder has; nothing when there is no such file. */
  std::vector<std::string> expected(const std::string& file) const;

  /** Whether the folder says what is to be written there. */
  bool expects(const std::string& file) const;

  /** @returns the files of the folder that are called that, a point and something more. */
  std::vector<std::string> inBetween(const std::string& file) const;

  /** @returns the words of a text; those with blanks stand in double quotes. */
  static std::vector<std::string> words(const std::string& text);

 private:
  std::string named(std::string text) const;

  const std::filesystem::path folder_;
  const std::map<std::string, std::string> names_;
  std::vector<ScenarioStep> steps_;
};

}  // namespace zerva
