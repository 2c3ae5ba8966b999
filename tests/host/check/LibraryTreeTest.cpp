// The order in which a host and its loader look for libraries, in trees of a test's own.

#include <elf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "host/check/CheckSubject.h"
#include "host/check/LibraryTree.h"
#include "host/check/LibraryUse.h"
#include "src/ServiceConfigurator/DirectiveTokeniser.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

namespace fs = std::filesystem;
using testing::Eq;
using testing::Optional;

const fs::path libraries = fs::path(ZERVA_BUILD_DIRECTORY) / "check-libraries";
const fs::path plugins = fs::path(ZERVA_BUILD_DIRECTORY) / "plugins";

class ATreeOfLibraries : public testing::Test {
 protected:
  void put(const fs::path& library, const std::string& path) const {
    fs::create_directories(fs::path(root + path).parent_path());
    fs::copy_file(library, root + path);
  }
  void put(const std::string& path) const { put(libraries / "libTraps.so", path); }

  LibraryPlaces places() const {
    LibraryPlaces places;
    places.root = root;
    places.kind = ownElfKind();
    return places;
  }

  /** What a library needs whatever is in it, sanitizers included. */
  static std::set<std::string> ofEveryBuild() {
    return {"libstdc++.so.6", "libm.so.6",     "libgcc_s.so.1", "libc.so.6",
            "libasan.so.8",   "libubsan.so.1", "libtsan.so.2"};
  }

  LibraryUse look(const std::string& name, const LibraryPlaces& wanted,
                  const std::string& creator = "createTraps") const {
    const std::string text = "service_instance: " + name + " " + creator + " /a AIfc";
    const ParsedLine line(
        {1, text.size(), text, tokeniseDirective(text.data(), static_cast<int>(text.size()), " ")});
    LibraryUse use = lookIntoLibrary(CheckedFile{"a", "", {}}, line, LibraryTree(wanted));
    use.line = nullptr;
    use.file = nullptr;
    return use;
  }

  const TempDirectory directory;
  const std::string root = fs::canonical(directory.path()).string();
};

TEST_F(ATreeOfLibraries, IsSearchedInTheHostsDirectoriesFirst) {
  put("/usr/lib/a.so");
  put("/opt/one/b.so");
  put("/opt/two/a.so");
  LibraryPlaces wanted = places();
  wanted.hostDirectories = {"/opt/one", "/opt/two"};
  EXPECT_THAT(LibraryTree(wanted).find("a.so"), Optional(Eq("/opt/two/a.so")));
}

TEST_F(ATreeOfLibraries, IsSearchedInTheEnvironmentsDirectoriesBeforeTheLoaders) {
  put("/usr/lib/a.so");
  put("/env/a.so");
  LibraryPlaces wanted = places();
  wanted.environment = {"/env"};
  EXPECT_THAT(LibraryTree(wanted).find("a.so"), Optional(Eq("/env/a.so")));
}

TEST_F(ATreeOfLibraries, IsSearchedWhereThePlatformsLibrarySays) {
  put("/opt/zerva/lib/a.so");
  LibraryPlaces wanted = places();
  wanted.platformDirectory = "/opt/zerva/bin";
  wanted.platformRunpath = "$ORIGIN/../lib:$ORIGIN";
  EXPECT_THAT(LibraryTree(wanted).find("a.so"), Optional(Eq("/opt/zerva/bin/../lib/a.so")));
}

TEST_F(ATreeOfLibraries, IsSearchedInTheLoadersDirectories) {
  put("/usr/lib/a.so");
  EXPECT_THAT(LibraryTree(places()).find("a.so"), Optional(Eq("/usr/lib/a.so")));
}

TEST_F(ATreeOfLibraries, IsSearchedInTheDirectoriesOfTheLoadersConfiguration) {
  put("/vendor/a.so");
  fs::create_directories(root + "/etc/ld.so.conf.d");
  writeFile(root + "/etc/ld.so.conf", "# all of them\ninclude /etc/ld.so.conf.d/*.conf\n");
  writeFile(root + "/etc/ld.so.conf.d/vendor.conf", "/vendor # ours\n");
  EXPECT_THAT(LibraryTree(places()).find("a.so"), Optional(Eq("/vendor/a.so")));
}

TEST_F(ATreeOfLibraries, FindsNothingThatIsNotThere) {
  EXPECT_EQ(LibraryTree(places()).find("a.so"), std::nullopt);
  EXPECT_EQ(LibraryTree(places()).find("/usr/lib/a.so"), std::nullopt);
}

TEST_F(ATreeOfLibraries, FindsANameWithASlashWithoutASearch) {
  put("/usr/lib/a.so");
  EXPECT_THAT(LibraryTree(places()).find("/usr/lib/a.so"), Optional(Eq("/usr/lib/a.so")));
  EXPECT_EQ(LibraryTree(places()).find("./a.so"), std::nullopt);
}

// The host itself takes what is there; only the loader looks what it is and goes on.
TEST_F(ATreeOfLibraries, PassesOverOtherWordSizesOnlyInTheLoadersSearch) {
  put(plugins / "libWrongWordSize.so", "/opt/libA.so");
  put("/usr/lib/libA.so");
  LibraryPlaces host = places();
  host.hostDirectories = {"/opt"};
  EXPECT_EQ(look("libA.so", host).fault, LibraryFault::WrongMachine);
  LibraryPlaces loader = places();
  loader.environment = {"/opt"};
  EXPECT_EQ(look("libA.so", loader).path, "/usr/lib/libA.so");
}

TEST_F(ATreeOfLibraries, IsThatOfAnyKindOfMachine) {
  put(plugins / "libWrongWordSize.so", "/usr/lib/libA.so");
  LibraryPlaces wanted = places();
  wanted.kind = wanted.kind.bits == 64 ? ElfKind{32, false, EM_386} : ElfKind{64, false, EM_X86_64};
  EXPECT_EQ(look("libA.so", wanted).fault, LibraryFault::None);
}

TEST_F(ATreeOfLibraries, FindsWhatALibraryNeedsWhereTheLibrarySays) {
  put(libraries / "libFindsHidden.so", "/opt/libFindsHidden.so");
  LibraryPlaces wanted = places();
  wanted.hostDirectories = {"/opt"};
  wanted.loaded = ofEveryBuild();
  const LibraryUse missing = look("libFindsHidden.so", wanted, "createNeeding");
  ASSERT_EQ(missing.missing.size(), 1U);
  EXPECT_EQ(missing.missing[0].name, "libHidden.so");
  EXPECT_EQ(missing.missing[0].neededBy, "libFindsHidden.so");
  put(libraries / "hidden/libHidden.so", "/opt/hidden/libHidden.so");
  EXPECT_EQ(look("libFindsHidden.so", wanted, "createNeeding").missing.size(), 0U);
}

/** Puts a program with a path of its own there, with what it needs in that path's directory. */
class AProgramsTree : public ATreeOfLibraries {
 protected:
  void putProgram(const std::string& library) const {
    put(libraries / library, "/usr/bin/host");
    put(libraries / "hidden/libBetween.so", "/usr/bin/hidden/libBetween.so");
    put(libraries / "hidden/libHidden.so", "/usr/bin/hidden/libHidden.so");
  }

  std::vector<std::string> started(const std::vector<std::string>& environment = {}) const {
    LibraryPlaces wanted = places();
    wanted.loaded = ofEveryBuild();
    wanted.environment = environment;
    return programAndLibraries("/usr/bin/host", LibraryTree(wanted));
  }
};

TEST_F(AProgramsTree, IsSearchedForAllThatIsNeededWhereAPathOfTheOlderKindSays) {
  putProgram("libOlderPath.so");
  EXPECT_THAT(started(), testing::ElementsAre("/usr/bin/host", "/usr/bin/hidden/libBetween.so",
                                              "/usr/bin/hidden/libHidden.so"));
}

TEST_F(AProgramsTree, IsSearchedForWhatIsNeededDirectlyWhereAPathOfTheNewerKindSays) {
  putProgram("libNewerPath.so");
  EXPECT_THAT(started(), testing::IsEmpty()) << "the library between does not say";
  put(libraries / "hidden/libHidden.so", "/usr/lib/libHidden.so");
  EXPECT_THAT(started(), testing::ElementsAre("/usr/bin/host", "/usr/bin/hidden/libBetween.so",
                                              "/usr/lib/libHidden.so"));
}

TEST_F(AProgramsTree, IsSearchedInTheEnvironmentsDirectoriesAfterAPathOfTheOlderKind) {
  putProgram("libOlderPath.so");
  put(libraries / "hidden/libBetween.so", "/env/libBetween.so");
  EXPECT_THAT(started({"/env"}), testing::Contains("/usr/bin/hidden/libBetween.so"));
}

TEST_F(AProgramsTree, IsSearchedInTheEnvironmentsDirectoriesBeforeAPathOfTheNewerKind) {
  putProgram("libNewerPath.so");
  put(libraries / "hidden/libBetween.so", "/env/libBetween.so");
  put(libraries / "hidden/libHidden.so", "/env/libHidden.so");
  EXPECT_THAT(started({"/env"}),
              testing::ElementsAre("/usr/bin/host", "/env/libBetween.so", "/env/libHidden.so"));
}

TEST_F(ATreeOfLibraries, DoesNotSearchTheHostsDirectoriesForWhatALibraryNeeds) {
  put(libraries / "libNeedsHidden.so", "/opt/libNeedsHidden.so");
  put(libraries / "hidden/libHidden.so", "/opt/libHidden.so");
  LibraryPlaces wanted = places();
  wanted.hostDirectories = {"/opt"};
  wanted.loaded = ofEveryBuild();
  EXPECT_EQ(look("libNeedsHidden.so", wanted, "createNeeding").missing.size(), 1U);
}

TEST_F(ATreeOfLibraries, TakesWhatTheHostHasLoadedForThere) {
  put(libraries / "libNeedsHidden.so", "/usr/lib/libNeedsHidden.so");
  LibraryPlaces wanted = places();
  wanted.loaded = ofEveryBuild();
  wanted.loaded.insert("libHidden.so");
  EXPECT_EQ(look("libNeedsHidden.so", wanted, "createNeeding").missing.size(), 0U);
}

TEST_F(ATreeOfLibraries, TellsWhatIsUsedAndNobodyHas) {
  put(libraries / "libUndefined.so", "/usr/lib/libUndefined.so");
  put("/usr/lib/libTraps.so");
  LibraryPlaces wanted = places();
  wanted.loaded = ofEveryBuild();
  wanted.hostFiles = {"/usr/lib/libTraps.so"};
  std::vector<std::string> names;
  for (const UndefinedSymbol& sut : look("libUndefined.so", wanted, "createUndefined").undefined) {
    names.push_back(sut.name);
  }
  EXPECT_THAT(names, testing::IsSupersetOf({"plant::pressure(char const*)", "levelOf"}));
}

TEST_F(ATreeOfLibraries, CountsWhatTheHostHasAsThere) {
  put(libraries / "libNeedsHidden.so", "/usr/lib/libNeedsHidden.so");
  put(libraries / "hidden/libHidden.so", "/usr/lib/libHidden.so");
  put("/usr/lib/libTraps.so");
  LibraryPlaces wanted = places();
  wanted.loaded = ofEveryBuild();
  wanted.loaded.insert("libHidden.so");
  const auto usesHidden = [&] {
    for (const UndefinedSymbol& symbol :
         look("libNeedsHidden.so", wanted, "createNeeding").undefined) {
      if (symbol.name == "hidden") return true;
    }
    return false;
  };
  wanted.hostFiles = {"/usr/lib/libTraps.so"};
  EXPECT_TRUE(usesHidden());
  wanted.hostFiles = {"/usr/lib/libHidden.so"};
  EXPECT_FALSE(usesHidden());
}

TEST_F(ATreeOfLibraries, SaysNothingOfSymbolsWhenNobodyKnowsTheHost) {
  put(libraries / "libUndefined.so", "/usr/lib/libUndefined.so");
  LibraryPlaces wanted = places();
  wanted.loaded = ofEveryBuild();
  EXPECT_TRUE(look("libUndefined.so", wanted, "createUndefined").undefined.empty());
}

TEST_F(ATreeOfLibraries, KnowsWhatAProgramIsStartedWith) {
  put(libraries / "libFindsHidden.so", "/usr/bin/host");
  LibraryPlaces wanted = places();
  wanted.loaded = ofEveryBuild();
  EXPECT_THAT(programAndLibraries("/usr/bin/host", LibraryTree(wanted)), testing::IsEmpty());
  put(libraries / "hidden/libHidden.so", "/usr/bin/hidden/libHidden.so");
  EXPECT_THAT(programAndLibraries("/usr/bin/host", LibraryTree(wanted)),
              testing::ElementsAre("/usr/bin/host", "/usr/bin/hidden/libHidden.so"));
}

TEST_F(ATreeOfLibraries, TellsWhatEverybodyMayWriteToOfWhatIsNeeded) {
  put(libraries / "libFindsHidden.so", "/opt/libFindsHidden.so");
  put(libraries / "hidden/libHidden.so", "/opt/hidden/libHidden.so");
  LibraryPlaces wanted = places();
  wanted.hostDirectories = {"/opt"};
  wanted.loaded = ofEveryBuild();
  EXPECT_EQ(look("libFindsHidden.so", wanted, "createNeeding").writable, "");
  fs::permissions(root + "/opt/hidden/libHidden.so", fs::perms::all);
  EXPECT_EQ(look("libFindsHidden.so", wanted, "createNeeding").writable,
            root + "/opt/hidden/libHidden.so");
}

TEST_F(ATreeOfLibraries, TellsWhatEverybodyMayWriteTo) {
  put("/opt/open/libA.so");
  LibraryPlaces wanted = places();
  wanted.hostDirectories = {"/opt/open"};
  EXPECT_EQ(look("libA.so", wanted).writable, "");
  fs::permissions(root + "/opt/open", fs::perms::all);
  EXPECT_EQ(look("libA.so", wanted).writable, root + "/opt/open");
  fs::permissions(root + "/opt/open", fs::perms::all | fs::perms::sticky_bit);
  EXPECT_EQ(look("libA.so", wanted).writable, "");
}

}  // namespace
}  // namespace zerva
