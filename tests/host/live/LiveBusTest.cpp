#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "host/live/LiveBus.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using namespace std::chrono_literals;

std::string complaint(const std::string& directory) {
  try {
    const LiveBus sut(directory, 1s);
    return "";
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

class ABusToLookAt : public testing::Test {
 protected:
  ABusToLookAt() {
    ::unsetenv("ZERVA_BUS");
    std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_all);
  }
  ~ABusToLookAt() override { ::unsetenv("ZERVA_BUS"); }

  const TempDirectory directory;
};

TEST_F(ABusToLookAt, IsTheOneThatWasNamed) {
  const LiveBus sut(directory.path(), 1s);
  EXPECT_EQ(sut.directory(), directory.path());
  EXPECT_TRUE(sut.processes().empty());
}

TEST_F(ABusToLookAt, IsElseTheOneOfTheEnvironment) {
  ::setenv("ZERVA_BUS", directory.path().c_str(), 1);
  const LiveBus sut("", 1s);
  EXPECT_EQ(sut.directory(), directory.path());
}

TEST_F(ABusToLookAt, HasToBeNamedSomewhere) {
  EXPECT_EQ(complaint(""), "which bus? Say it with --bus DIR or ZERVA_BUS in the environment");
}

TEST_F(ABusToLookAt, IsNotMadeWhenItIsMissing) {
  const std::string missing = directory.file("missing");
  EXPECT_EQ(complaint(missing), "there is no bus: " + missing + " is no directory");
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(ABusToLookAt, HasToBeTheUsersAlone) {
  std::filesystem::permissions(directory.path(), std::filesystem::perms::all);
  EXPECT_THAT(complaint(directory.path()), testing::HasSubstr("it is open to others"));
}

}  // namespace
}  // namespace zerva
