#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "host/check/RootedPath.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

class APathInATree : public testing::Test {
 protected:
  std::string sut(const std::string& path) const { return rootedPath(root, path); }
  void link(const std::string& to, const std::string& from) const {
    std::filesystem::create_directories(std::filesystem::path(root + from).parent_path());
    std::filesystem::create_symlink(to, root + from);
  }

  const TempDirectory directory;
  const std::string root = directory.path().string();
};

TEST_F(APathInATree, IsBelowIt) { EXPECT_EQ(sut("/usr/lib/a.so"), root + "/usr/lib/a.so"); }

TEST_F(APathInATree, IsBelowItWhenItIsRelativeToo) {
  EXPECT_EQ(sut("lib/a.so"), root + "/lib/a.so");
}

TEST_F(APathInATree, DoesNotLeaveItUpwards) { EXPECT_EQ(sut("/../../etc"), root + "/etc"); }

TEST_F(APathInATree, StaysInItThroughAnAbsoluteLink) {
  link("/usr/lib", "/lib");
  EXPECT_EQ(sut("/lib/a.so"), root + "/usr/lib/a.so");
}

TEST_F(APathInATree, FollowsARelativeLink) {
  link("../b/c.so", "/a/l.so");
  EXPECT_EQ(sut("/a/l.so"), root + "/b/c.so");
}

TEST_F(APathInATree, EndsWithLinksThatLeadInCircles) {
  link("/b", "/a");
  link("/a", "/b");
  EXPECT_FALSE(std::filesystem::is_regular_file(sut("/a/x")));
}

TEST_F(APathInATree, IsThePathItselfWithoutATree) { EXPECT_EQ(rootedPath("", "../x"), "../x"); }

}  // namespace
}  // namespace zerva
