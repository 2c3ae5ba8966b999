#include <stdexcept>

#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"
#include "tests/support/WaitUntil.h"

namespace zerva {
namespace {

using testing::HasSubstr;

TEST(WaitingForACondition, ThatComesTrue_SaysSo) {
  int asked = 0;

  EXPECT_TRUE(waitUntil([&] { return ++asked == 3; }));
}

TEST(WaitingForACondition, ThatNeverHolds_SaysSoAtTheDeadline) {
  EXPECT_FALSE(waitUntil([] { return false; }, std::chrono::milliseconds{1}));
}

TEST(WaitingForACondition, WithNoTimeAtAll_AsksOnceMoreAtTheEnd) {
  int asked = 0;

  EXPECT_TRUE(waitUntil([&] { return ++asked == 2; }, std::chrono::milliseconds{0}));
}

TEST(ATempDirectory, IsGoneAfterItsEndWithAllThatWasInIt) {
  std::filesystem::path path;
  {
    const TempDirectory sut;
    path = sut.write("a.txt", "text");
    ASSERT_TRUE(std::filesystem::exists(path));
  }

  EXPECT_FALSE(std::filesystem::exists(path.parent_path()));
}

TEST(AFilesText, IsReadAsItWasWritten) {
  const TempDirectory directory;
  const std::string text{"one\r\n\0two", 9};

  EXPECT_EQ(readFile(directory.write("a.txt", text)), text);
  EXPECT_EQ(readFile(directory.write("a.txt", "")), "");
}

TEST(AFilesText, OfAMissingFile_ThrowsWithItsName) {
  EXPECT_THAT([] { readFile("/no/such/file"); },
              testing::ThrowsMessage<std::runtime_error>(HasSubstr("/no/such/file")));
}

}  // namespace
}  // namespace zerva
