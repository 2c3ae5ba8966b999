#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "host/check/TargetPlaces.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

/** The name of the machine of the other word size. */
std::string otherMachine() { return ownElfKind().bits == 64 ? "i386" : "x86_64"; }

TEST(ThePlacesOfThisMachine, AreForItsKind) { EXPECT_EQ(targetPlaces({}).kind, ownElfKind()); }

TEST(ThePlacesOfThisMachine, KnowWhatAHostHasLoaded) {
  const LibraryPlaces sut = targetPlaces({});
  EXPECT_THAT(sut.loaded, Contains("libClientUtils.so"));
  EXPECT_THAT(sut.hostFiles, Contains(EndsWith("/libClientUtils.so")));
  EXPECT_THAT(sut.hostFiles, Contains("/proc/self/exe"));
}

TEST(ThePlacesOfThisMachine, KnowWhereThePlatformsLibraryIsAndLooks) {
  const LibraryPlaces sut = targetPlaces({});
  EXPECT_THAT(sut.platformDirectory, EndsWith("/lib"));
  EXPECT_THAT(sut.platformRunpath, HasSubstr("$ORIGIN"));
}

TEST(ThePlacesOfThisMachine, HaveTheDirectoryBesideTheProgramsUnlessOthersAreGiven) {
  EXPECT_THAT(targetPlaces({}).hostDirectories, testing::ElementsAre(EndsWith("/lib")));
  CheckOptions options;
  options.libraryDirectories = {"/a", "/b"};
  EXPECT_THAT(targetPlaces(options).hostDirectories, testing::ElementsAre("/a", "/b"));
}

TEST(ThePlacesOfAnotherKindOfMachine, DoNotCountWhatThisHostHas) {
  CheckOptions options;
  options.machine = otherMachine();
  const LibraryPlaces sut = targetPlaces(options);
  EXPECT_FALSE(sut.kind == ownElfKind());
  EXPECT_THAT(sut.hostFiles, IsEmpty());
}

TEST(ThePlacesOfATree, DoNotCountTheEnvironment) {
  const TempDirectory tree;
  CheckOptions options;
  options.root = tree.path();
  const LibraryPlaces sut = targetPlaces(options);
  EXPECT_THAT(sut.environment, IsEmpty());
  EXPECT_THAT(sut.hostDirectories, IsEmpty());
  EXPECT_THAT(sut.hostFiles, IsEmpty());
}

}  // namespace
}  // namespace zerva
