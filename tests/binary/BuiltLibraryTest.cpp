#include <gmock/gmock.h>

#include <algorithm>

#include "tests/binary/BuiltLibrary.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSubsetOf;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

constexpr bool kIs32 = sizeof(void*) == 4;

const std::vector<std::string> kFrameworkLibraries = {
    "libFwkTimer.so",     "libServiceExecutor.so", "libExceptionPublisher.so",
    "libZervaVersion.so", "libLoggingHandler.so",  "libClientUtils.so"};

/** What the language needs, and what an instrumented build needs besides. */
std::vector<std::string> languageLibraries() {
  std::vector<std::string> names = {"libstdc++.so.6", "libgcc_s.so.1", "libm.so.6", "libc.so.6",
                                    kIs32 ? "ld-linux.so.2" : "ld-linux-x86-64.so.2"};
#if defined(__SANITIZE_ADDRESS__)
  names.insert(names.end(), {"libasan.so.8", "libubsan.so.1"});
#elif defined(__SANITIZE_THREAD__)
  names.push_back("libtsan.so.2");
#endif
  return names;
}

TEST(TheBuiltLibrary, NeedsAllSixLibrariesOfTheFrameworkByTheirNames) {
  const zerva::BuiltLibrary sut;
  EXPECT_THAT(sut.dynamicEntries("NEEDED"), IsSupersetOf(kFrameworkLibraries));
}

TEST(TheBuiltLibrary, NeedsNothingElseThanTheLanguagesOwnLibraries) {
  const zerva::BuiltLibrary sut;
  std::vector<std::string> allowed = languageLibraries();
  allowed.insert(allowed.end(), kFrameworkLibraries.begin(), kFrameworkLibraries.end());
  EXPECT_THAT(sut.dynamicEntries("NEEDED"), IsSubsetOf(allowed));
}

TEST(TheBuiltLibrary, HasTheWordSizeThatWasAskedFor) {
  const zerva::BuiltLibrary sut;
  EXPECT_EQ(sut.headerField("Class"), kIs32 ? "ELF32" : "ELF64");
}

TEST(TheBuiltLibrary, IsForTheMachineThatWasAskedFor) {
  const zerva::BuiltLibrary sut;
  EXPECT_EQ(sut.headerField("Machine"), kIs32 ? "Intel 80386" : "Advanced Micro Devices X86-64");
}

TEST(TheBuiltLibrary, IsASharedObject) {
  const zerva::BuiltLibrary sut;
  EXPECT_THAT(sut.headerField("Type"), StartsWith("DYN"));
}

TEST(TheBuiltLibrary, IsKnownByItsOwnName) {
  const zerva::BuiltLibrary sut;
  EXPECT_THAT(sut.dynamicEntries("SONAME"), ElementsAre("libServiceConfigurator.so"));
}

TEST(TheBuiltLibrary, IsSharedBetweenProcessesWithoutChangingItsCode) {
  const zerva::BuiltLibrary sut;
  EXPECT_THAT(sut.dynamicEntries("TEXTREL"), IsEmpty());
}

TEST(TheBuiltLibrary, BindsEverythingWhenItIsLoaded) {
  const zerva::BuiltLibrary sut;
  EXPECT_THAT(sut.dynamicEntries("FLAGS_1"), Contains(HasSubstr("NOW")));
}

TEST(TheBuiltLibrary, LooksForOtherLibrariesOnlyRelativeToItself) {
  const zerva::BuiltLibrary sut;
  for (const std::string& path : sut.dynamicEntries("RUNPATH")) {
    EXPECT_THAT(path, StartsWith("$ORIGIN"));
    EXPECT_THAT(path, Not(HasSubstr(":/")));
  }
}

// A symbol that is unique in the process keeps its library mapped for ever.
TEST(TheBuiltLibrary, ExportsNothingThatKeepsItMapped) {
  const zerva::BuiltLibrary sut;
  EXPECT_THAT(sut.exportedKinds(), Not(HasSubstr("u")));
}

TEST(TheBuiltLibrary, TakesNoLocksOrThreadsFromTheStandardLibrary) {
  const zerva::BuiltLibrary sut;
  for (const std::string& name : sut.importedNames()) {
    EXPECT_THAT(name, Not(StartsWith("_ZNSt6thread"))) << name;
    EXPECT_THAT(name, Not(StartsWith("_ZNSt18condition_variable"))) << name;
    EXPECT_THAT(name, Not(StartsWith("_ZNSt13__future_base"))) << name;
    EXPECT_THAT(name, Not(StartsWith("_ZSt20__throw_system_error"))) << name;
  }
}

}  // namespace
