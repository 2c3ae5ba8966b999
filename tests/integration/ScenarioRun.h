#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/integration/Scenario.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TempDirectory.h"

namespace zerva {

/** Does what a scenario says, and checks what came of it by the means of GoogleTest. */
class ScenarioRun {
 public:
  /** @param folder the scenario's. */
  explicit ScenarioRun(const std::filesystem::path& folder);

  /** Does all steps, then compares the output and looks that nothing is left running. */
  void run();

 private:
  void perform(const ScenarioStep& step);
  void prepare(const ScenarioStep& step);
  void start(const std::string& arguments);
  void generate(const std::string& argument);
  std::vector<std::string> ownBuses() const;
  void checkOutput(const std::string& file, const std::string& written) const;

  const TempDirectory temporary_;
  const Scenario scenario_;
  std::vector<std::string> through_;
  std::map<std::string, std::string> environment_;
  std::string directory_;
  bool showsRegistry_ = false;
  std::unique_ptr<ChildProcess> program_;
};

}  // namespace zerva
