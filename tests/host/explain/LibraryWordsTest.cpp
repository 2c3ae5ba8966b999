#include <gtest/gtest.h>

#include "host/explain/LibraryWords.h"
#include "tests/host/explain/ExplainedFile.h"

namespace zerva {
namespace {

/** What is said of the library of a line. */
class TheLibraryOfALine : public testing::Test {
 protected:
  std::string sut(const LibraryUse* use) const { return openingWords(file.line(1), use); }

  ExplainedFile file{"service_info: libA.so createA /a AIfc\n"};
};

TEST_F(TheLibraryOfALine, IsNamedAsItIsWrittenWhenNobodyLooked) {
  EXPECT_EQ(sut(nullptr), "opens libA.so and calls createA");
  EXPECT_TRUE(makes(nullptr));
  EXPECT_EQ(openingLog(nullptr), "");
}

TEST_F(TheLibraryOfALine, IsTheFileThatIsFound) {
  const LibraryUse& use = file.library(1);
  EXPECT_EQ(sut(&use), "opens lib/libA.so and calls createA");
  EXPECT_TRUE(makes(&use));
}

TEST_F(TheLibraryOfALine, MayBeNowhere) {
  const LibraryUse& use = file.library(1, LibraryFault::NotFound);
  EXPECT_EQ(sut(&use), "looks for libA.so and does not find it");
  EXPECT_FALSE(makes(&use));
  EXPECT_EQ(openingLog(&use), "Error opening library");
}

TEST_F(TheLibraryOfALine, MayNotBeOne) {
  const LibraryUse& use = file.library(1, LibraryFault::NotElf);
  EXPECT_EQ(sut(&use), "finds lib/libA.so and cannot open it");
  EXPECT_EQ(openingLog(&use), "Error opening library");
}

TEST_F(TheLibraryOfALine, MayNeedAnotherThatIsNotThere) {
  LibraryUse& use = file.library(1);
  use.missing.push_back({"libB.so", "libA.so", "is nowhere"});
  EXPECT_EQ(sut(&use), "finds lib/libA.so and cannot open it");
  EXPECT_FALSE(makes(&use));
}

TEST_F(TheLibraryOfALine, MayUseWhatNobodyHas) {
  LibraryUse& use = file.library(1);
  use.undefined.push_back({"pump()", "libA.so"});
  EXPECT_EQ(sut(&use), "finds lib/libA.so and cannot open it");
  EXPECT_FALSE(makes(&use));
}

TEST_F(TheLibraryOfALine, MayHaveNoSuchCreator) {
  LibraryUse& use = file.library(1);
  use.creator = CreatorFault::NotFound;
  EXPECT_EQ(sut(&use), "opens lib/libA.so and finds no createA in it");
  EXPECT_FALSE(makes(&use));
  EXPECT_EQ(openingLog(&use), "Error resolving symbol");
}

TEST_F(TheLibraryOfALine, MayHaveACreatorThatIsNoFunction) {
  LibraryUse& use = file.library(1);
  use.creator = CreatorFault::NotAFunction;
  EXPECT_EQ(sut(&use),
            "opens lib/libA.so and calls createA, which is no function: that ends the process");
  EXPECT_FALSE(makes(&use));
  EXPECT_EQ(openingLog(&use), "");
}

}  // namespace
}  // namespace zerva
