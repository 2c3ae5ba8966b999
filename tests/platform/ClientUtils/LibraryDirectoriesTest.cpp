#include <gmock/gmock.h>

#include <memory>

#include "framework/Dll.h"
#include "runtime/libClientUtils/LibraryDirectories.h"
#include "tests/platform/Libraries.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class TheLibraryDirectories : public testing::Test {
 protected:
  ~TheLibraryDirectories() override { LibraryDirectories::set({}); }

  const TempDirectory first;
  const TempDirectory second;
};

TEST_F(TheLibraryDirectories, AreThoseThatWereSet) {
  LibraryDirectories::set({"one", "two"});

  EXPECT_THAT(LibraryDirectories::get(), ElementsAre("one", "two"));
}

TEST_F(TheLibraryDirectories, AreSearchedInTheirOrder) {
  first.write("libOnlyFirst.so", "");
  first.write("libBoth.so", "");
  second.write("libBoth.so", "");
  second.write("libOnlySecond.so", "");
  LibraryDirectories::set({first.path(), second.path()});

  EXPECT_EQ(LibraryDirectories::resolve("libOnlyFirst.so"), first.file("libOnlyFirst.so"));
  EXPECT_EQ(LibraryDirectories::resolve("libBoth.so"), first.file("libBoth.so"));
  EXPECT_EQ(LibraryDirectories::resolve("libOnlySecond.so"), second.file("libOnlySecond.so"));
}

TEST_F(TheLibraryDirectories, LeaveANameAsItIsThatNoneOfThemHas) {
  LibraryDirectories::set({first.path()});

  EXPECT_EQ(LibraryDirectories::resolve("libNowhere.so"), "libNowhere.so");
}

TEST_F(TheLibraryDirectories, AreNotSearchedForANameWithASlash) {
  first.write("libHere.so", "");
  LibraryDirectories::set({first.path()});

  EXPECT_EQ(LibraryDirectories::resolve("./libHere.so"), "./libHere.so");
}

TEST_F(TheLibraryDirectories, AreWhereALibraryIsOpenedFrom) {
  std::filesystem::copy(libraryDirectory() / "libplatform_plugin.so", first.file("libMoved.so"));
  LibraryDirectories::set({first.path()});

  Dll sut("libMoved.so");

  EXPECT_EQ(sut.error(), nullptr);
}

TEST_F(TheLibraryDirectories, AreNotSearchedForALibraryThatIsOpen) {
  std::filesystem::copy(libraryDirectory() / "libplatform_plugin.so", second.file("libMoved.so"));
  LibraryDirectories::set({first.path(), second.path()});
  {
    Dll open("libMoved.so");
    first.write("libMoved.so", "this is no library");
    auto again = std::make_unique<Dll>("libMoved.so");
    EXPECT_EQ(again->error(), nullptr);
    again.reset();
    EXPECT_EQ(Dll("libMoved.so").error(), nullptr);
  }

  EXPECT_NE(Dll("libMoved.so").error(), nullptr);
}

TEST_F(TheLibraryDirectories, AreSearchedAgainForALibraryThatDidNotOpen) {
  second.write("libBroken.so", "this is no library");
  LibraryDirectories::set({first.path(), second.path()});
  Dll broken("libBroken.so");
  ASSERT_NE(broken.error(), nullptr);

  std::filesystem::copy(libraryDirectory() / "libplatform_plugin.so", first.file("libBroken.so"));

  EXPECT_EQ(Dll("libBroken.so").error(), nullptr);
}

TEST_F(TheLibraryDirectories, HideALibraryOfTheSystem) {
  first.write("libm.so.6", "this is no library");
  LibraryDirectories::set({first.path()});

  Dll sut("libm.so.6");

  ASSERT_NE(sut.error(), nullptr);
  EXPECT_THAT(sut.error(), HasSubstr(first.file("libm.so.6").string()));
}

TEST_F(TheLibraryDirectories, DoNotKeepLibrariesOfTheSystemFromBeingFound) {
  LibraryDirectories::set({first.path()});

  Dll sut("libm.so.6");

  EXPECT_EQ(sut.error(), nullptr);
}

}  // namespace
}  // namespace zerva
