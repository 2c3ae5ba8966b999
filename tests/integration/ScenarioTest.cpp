// Whole processes: each folder under scenarios/ is a run of `zerva` with a directive file, and with
// what must come of it.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/integration/ScenarioRun.h"

namespace zerva {
namespace {

/** The names that the build lists, so that a folder that is not listed is not overlooked there. */
std::vector<std::string> listed() {
  std::vector<std::string> names;
  std::istringstream stream(ZERVA_SCENARIOS);
  for (std::string name; stream >> name;) names.push_back(name);
  return names;
}

class AScenario : public testing::TestWithParam<std::string> {};

TEST_P(AScenario, EndsAsItsFolderSays) {
  ScenarioRun sut(std::filesystem::path(ZERVA_SOURCE_DIRECTORY) / "tests/integration/scenarios" /
                  GetParam());
  sut.run();
}

INSTANTIATE_TEST_SUITE_P(Named, AScenario, testing::ValuesIn(listed()),
                         [](const auto& test) { return test.param; });

TEST(TheScenarios, AreAllListed) {
  std::vector<std::string> sut;
  for (const auto& entry : std::filesystem::directory_iterator(
           std::filesystem::path(ZERVA_SOURCE_DIRECTORY) / "tests/integration/scenarios")) {
    sut.push_back(entry.path().filename());
  }
  EXPECT_THAT(sut, testing::UnorderedElementsAreArray(listed()));
}

}  // namespace
}  // namespace zerva
