#include <gtest/gtest.h>

#include <filesystem>

#include "host/check/ProgramSearch.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;

/** Programs in the directories `a` and `b`, which are searched in this order. */
class TheSearchForPrograms : public testing::Test {
 protected:
  void make(const std::string& name, fs::perms permissions = fs::perms::owner_all) {
    fs::create_directories(directory.file(name).parent_path());
    fs::permissions(directory.write(name, "#!/bin/sh\n"), permissions);
  }
  std::string path(const std::string& name) const { return directory.file(name).string(); }

  const TempDirectory directory;
  const ProgramSearch sut{"", path("a") + ":" + path("b")};
};

TEST_F(TheSearchForPrograms, TakesTheFirstThatCanBeExecuted) {
  make("a/worker", fs::perms::owner_read);
  make("b/worker");
  EXPECT_EQ(sut.find("worker"), path("b/worker"));
  EXPECT_EQ(sut.whyNot("worker"), "");
}

TEST_F(TheSearchForPrograms, TakesAPathAsItIs) {
  make("c/worker");
  EXPECT_EQ(sut.find(path("c/worker")), path("c/worker"));
  EXPECT_EQ(sut.find("worker"), "");
}

TEST_F(TheSearchForPrograms, SaysWhyThereIsNone) {
  make("a/notes", fs::perms::owner_read);
  EXPECT_EQ(sut.find("notes"), "");
  EXPECT_EQ(sut.whyNot("notes"), "is no file that can be executed");
  EXPECT_EQ(sut.whyNot(path("a/notes")), "is no file that can be executed");
  EXPECT_EQ(sut.whyNot("nothing"), "is in none of the directories of PATH");
  EXPECT_EQ(sut.whyNot(path("a/nothing")), "is not there");
}

TEST_F(TheSearchForPrograms, LooksIntoTheTreeOfAnotherMachine) {
  make("bin/worker");
  const ProgramSearch there(directory.path().string(), "/bin");
  EXPECT_EQ(there.find("worker"), "/bin/worker");
}

}  // namespace
}  // namespace zerva
