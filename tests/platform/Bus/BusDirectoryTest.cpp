#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/Bus/BusWorld.h"

namespace {

using namespace zerva;
using testing::AllOf;
using testing::HasSubstr;

class TheBusDirectory : public BusWorld {
 protected:
  /** @returns why the bus is not opened on a directory. */
  static std::string refusal(const std::string& where) {
    try {
      const Bus sut(where);
      return "it was opened";
    } catch (const std::runtime_error& error) {
      return error.what();
    }
  }
};

TEST_F(TheBusDirectory, IsMadeForTheUserAlone) {
  const Bus sut(path);
  struct stat status {};
  ASSERT_EQ(::lstat(path.c_str(), &status), 0);
  EXPECT_TRUE(S_ISDIR(status.st_mode));
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
  EXPECT_EQ(sut.directory(), path.string());
}

TEST_F(TheBusDirectory, HoldsFilesForTheUserAlone) {
  const Bus sut(path);
  struct stat status {};
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    if (entry.is_regular_file()) {
      ASSERT_EQ(::lstat(entry.path().c_str(), &status), 0);
      EXPECT_EQ(status.st_mode & 0777U, 0600U);
    }
  }
}

TEST_F(TheBusDirectory, IsEmptyWhenTheBusIsClosed) {
  { const Bus sut(path); }
  EXPECT_TRUE(std::filesystem::is_empty(path));
}

#if !defined(__SANITIZE_ADDRESS__)
// A bus that could not be opened to the end, for want of a descriptor behind its socket, left the
// socket in the directory. Not under that sanitizer: its check of an object's type opens
// descriptors, and where none are left it calls good objects bad ones.
TEST_F(TheBusDirectory, IsEmptyWhenTheBusCannotBeOpenedForWantOfDescriptors) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  int failures = 0;
  for (rlim_t limit = 3; limit < 40; ++limit) {
    const rlimit few{limit, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    failures += refusal(path) == "it was opened" ? 0 : 1;
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &before), 0);
    EXPECT_TRUE(!exists(path) || is_empty(path)) << "with " << limit;
  }
  EXPECT_GT(failures, 0);
}
#endif

TEST_F(TheBusDirectory, MayBeNamedRelativeToWhereTheProgramIs) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(directory.path());
  {
    const Bus sut("bus/");
    EXPECT_EQ(sut.directory(), path.string());
    std::filesystem::current_path(before);
  }
  EXPECT_TRUE(std::filesystem::is_empty(path));
}

TEST_F(TheBusDirectory, IsNotMadeWhenItsParentIsMissing) {
  EXPECT_THAT(refusal(directory.file("missing") / "bus"),
              AllOf(HasSubstr("missing/bus'"), HasSubstr("No such file or directory")));
  EXPECT_FALSE(std::filesystem::exists(directory.file("missing")));
}

TEST_F(TheBusDirectory, ThatIsOpenToOthers_IsRefused) {
  std::filesystem::create_directory(path);
  for (const mode_t mode : {0755U, 0710U, 0701U, 0702U, 0740U}) {
    ::chmod(path.c_str(), mode);
    EXPECT_THAT(refusal(path), HasSubstr("it is open to others, its mode is 0"));
  }
  ::chmod(path.c_str(), 0700);
  EXPECT_EQ(refusal(path), "it was opened");
}

TEST_F(TheBusDirectory, OfAnotherUser_IsRefused) {
  if (::geteuid() != 0) {
    // What is the root's is of another user, and everybody may look at it.
    EXPECT_THAT(refusal("/"), HasSubstr("it belongs to user 0"));
    return;
  }
  std::filesystem::create_directory(path);
  ::chmod(path.c_str(), 0700);
  ASSERT_EQ(::chown(path.c_str(), 12345, 12345), 0);
  EXPECT_THAT(refusal(path), HasSubstr("it belongs to user 12345, not to user 0"));
}

TEST_F(TheBusDirectory, ThatIsASymbolicLink_IsRefused) {
  std::filesystem::create_directory(directory.file("real"));
  ::chmod(directory.file("real").c_str(), 0700);
  std::filesystem::create_directory_symlink(directory.file("real"), path);
  EXPECT_THAT(refusal(path), HasSubstr("it is a symbolic link"));
  EXPECT_THAT(refusal(path.string() + "/"), HasSubstr("it is a symbolic link"));
}

TEST_F(TheBusDirectory, ThatIsAFile_IsRefused) {
  directory.write("bus", "text");
  EXPECT_THAT(refusal(path), HasSubstr("Not a directory"));
}

TEST_F(TheBusDirectory, WhosePathIsTooLong_IsRefusedWithTheLimit) {
  const std::string longest =
      directory.path().string() + "/" + std::string(77 - directory.path().string().size() - 1, 'd');
  EXPECT_EQ(refusal(longest), "it was opened");
  EXPECT_THAT(refusal(longest + "d"),
              AllOf(HasSubstr("its path has 78 bytes"), HasSubstr("leaves room for 77")));
}

TEST_F(TheBusDirectory, OfASecondBusOfTheProcess_IsRefused) {
  const Bus first(path);
  EXPECT_THAT(refusal(directory.file("other")), HasSubstr("has opened a bus already"));
}

TEST_F(TheBusDirectory, ThatWasRefused_DoesNotKeepTheProcessFromAnotherBus) {
  EXPECT_NE(refusal(directory.file("missing") / "bus"), "it was opened");
  EXPECT_EQ(refusal(path), "it was opened");
}

TEST_F(TheBusDirectory, IsFreedOfWhatEndedProcessesLeftAndOfNothingElse) {
  std::filesystem::create_directory(path);
  ::chmod(path.c_str(), 0700);
  const std::vector<std::string> leftovers{"77-0123456789abcdef.names", "77-0123456789abcdef.sock",
                                           "78-0123456789abcdef.sock",
                                           "79-0123456789abcdef.names.new"};
  for (const std::string& name : leftovers) {
    directory.write("bus/" + name, "");
  }
  directory.write("bus/somebody's notes", "");
  const Bus sut(path);
  for (const std::string& name : leftovers) {
    EXPECT_FALSE(std::filesystem::exists(path / name)) << name;
  }
  EXPECT_TRUE(std::filesystem::exists(path / "somebody's notes"));
}

TEST_F(TheBusDirectory, IsRemovedWhenNoProcessIsOnTheBusAnyMore) {
  { const Bus ended(path); }
  directory.write("bus/77-0123456789abcdef.names", "");
  Bus::removeIfAbandoned(path);
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(TheBusDirectory, IsNotRemovedWhileAProcessIsOnTheBus) {
  const Bus sut(path);
  Bus::removeIfAbandoned(path);
  EXPECT_EQ(files(".names"), 1U);
  EXPECT_EQ(files(".sock"), 1U);
}

}  // namespace
