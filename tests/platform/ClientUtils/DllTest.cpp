#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>

#include "framework/Dll.h"
#include "framework/Service.h"
#include "runtime/libClientUtils/OpenLibraries.h"
#include "tests/platform/Libraries.h"
#include "tests/support/Concurrently.h"
#include "tests/support/FileText.h"
#include "tests/support/TempDirectory.h"

namespace zerva {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using namespace std::string_literals;

const std::string& pluginPath() {
  static const std::string path = libraryDirectory() / "libplatform_plugin.so";
  return path;
}

bool mapped(const std::string& library) {
  return readFile("/proc/self/maps").find(library) != std::string::npos;
}

int call(void* function) { return reinterpret_cast<int (*)()>(function)(); }

class ADll : public testing::Test {
 protected:
  /** Opens a library and says what failed. */
  static std::string errorOf(const std::string& path) {
    Dll sut(path);
    return sut.error() == nullptr ? "nothing failed" : sut.error();
  }

  const TempDirectory directory;
};

TEST_F(ADll, OpensALibraryAndResolvesItsSymbols) {
  Dll sut(pluginPath());
  ASSERT_EQ(sut.error(), nullptr);

  void* const symbol = sut.symbol("countCalls");

  ASSERT_EQ(sut.error(), nullptr);
  EXPECT_EQ(call(symbol), 1);
}

TEST_F(ADll, UnmapsItsLibraryWhenItIsDeleted) {
  {
    Dll sut(pluginPath());
    ASSERT_TRUE(mapped("libplatform_plugin.so"));
    call(sut.symbol("countCalls"));
  }

  EXPECT_FALSE(mapped("libplatform_plugin.so"));
}

TEST_F(ADll, RunsTheDestructorsOfItsLibraryWhenItIsDeleted) {
  ::unsetenv("ZERVA_TEST_PLUGIN_CLOSED");
  { Dll sut(pluginPath()); }

  EXPECT_STREQ(std::getenv("ZERVA_TEST_PLUGIN_CLOSED"), "yes");
}

TEST_F(ADll, OpenedAgain_FindsTheVariablesOfItsLibraryAsNew) {
  {
    Dll before(pluginPath());
    call(before.symbol("countCalls"));
  }

  Dll sut(pluginPath());

  EXPECT_EQ(call(sut.symbol("countCalls")), 1);
}

TEST_F(ADll, LeavesTheLibraryMappedWhileAnotherHasItOpen) {
  Dll other(pluginPath());
  { Dll sut(pluginPath()); }

  EXPECT_EQ(call(other.symbol("countCalls")), 1);
}

TEST_F(ADll, WhoseFileIsMissing_TellsNameAndCauseInItsError) {
  const std::string missing = directory.file("libmissing.so");

  EXPECT_THAT(errorOf(missing), HasSubstr(missing));
  EXPECT_THAT(errorOf(missing), HasSubstr("No such file or directory"));
}

TEST_F(ADll, WhoseNameIsFoundNowhere_TellsNameAndCauseInItsError) {
  EXPECT_THAT(errorOf("libmissing.so"), HasSubstr("libmissing.so"));
  EXPECT_THAT(errorOf("libmissing.so"), HasSubstr("No such file or directory"));
}

TEST_F(ADll, WhoseFileIsNoLibrary_TellsNameAndCauseInItsError) {
  const std::string text = directory.write("libtext.so", std::string(5000, 'x'));
  const std::string empty = directory.write("libempty.so", "");

  EXPECT_THAT(errorOf(text), HasSubstr(text));
  EXPECT_THAT(errorOf(text), HasSubstr("invalid ELF header"));
  EXPECT_THAT(errorOf(empty), HasSubstr(empty));
  EXPECT_THAT(errorOf(empty), HasSubstr("file too short"));
}

TEST_F(ADll, WhoseFileIsADirectory_TellsNameAndCauseInItsError) {
  const std::string path = directory.path();

  EXPECT_THAT(errorOf(path), HasSubstr(path));
  EXPECT_THAT(errorOf(path), HasSubstr("cannot read file data"));
}

TEST_F(ADll, WhoseFileHasTheWrongWordSize_TellsNameAndCauseInItsError) {
  constexpr std::size_t kClassAt = 4;
  std::string bytes = readFile(pluginPath());
  bytes[kClassAt] = bytes[kClassAt] == 1 ? 2 : 1;
  const std::string path = directory.write("libother.so", bytes);

  EXPECT_THAT(errorOf(path), HasSubstr(path));
  EXPECT_THAT(errorOf(path), HasSubstr("wrong ELF class"));
}

TEST_F(ADll, WhoseLibraryNeedsAFunctionThatNothingHas_FailsAtOpening) {
  const std::string path = libraryDirectory() / "libplatform_plugin_unbound.so";

  EXPECT_THAT(errorOf(path), HasSubstr(path));
  EXPECT_THAT(errorOf(path), HasSubstr("undefined symbol: functionThatNothingHas"));
}

TEST_F(ADll, WhoseLibraryNeedsAnotherThatIsMissing_NamesBoth) {
  const std::string path = directory.file("libmoved.so");
  std::filesystem::copy(libraryDirectory() / "libplatform_plugin_needing.so", path);

  EXPECT_THAT(errorOf(path), HasSubstr(path));
  EXPECT_THAT(errorOf(path), HasSubstr("libplatform_plugin_needed.so"));
}

TEST_F(ADll, WithAnEmptyName_OpensNothing) {
  Dll sut("");

  EXPECT_STREQ(sut.error(), "'': no library is named");
  sut.symbol("malloc");
  EXPECT_NE(sut.error(), nullptr);
}

TEST_F(ADll, TakesItsPathUpToTheFirstZeroByte) {
  Dll sut(pluginPath() + "\0and more"s);

  EXPECT_EQ(sut.error(), nullptr);
}

TEST_F(ADll, TakesTheNameOfASymbolUpToTheFirstZeroByte) {
  Dll sut(pluginPath());

  void* const symbol = sut.symbol("countCalls\0and more"s);

  ASSERT_EQ(sut.error(), nullptr);
  EXPECT_EQ(call(symbol), 1);
}

TEST_F(ADll, WithoutASymbol_TellsLibraryAndSymbolInItsError) {
  Dll sut(pluginPath());

  EXPECT_EQ(sut.symbol("createMissing"), nullptr);

  ASSERT_NE(sut.error(), nullptr);
  EXPECT_THAT(sut.error(), HasSubstr(pluginPath()));
  EXPECT_THAT(sut.error(), HasSubstr("undefined symbol: createMissing"));
}

TEST_F(ADll, KeepsItsErrorUntilItsNextOperation) {
  Dll sut(pluginPath());
  sut.symbol("createMissing");
  const std::string first = sut.error();
  Dll other(directory.file("libmissing.so"));

  EXPECT_EQ(sut.error(), first);

  sut.symbol("countCalls");
  EXPECT_EQ(sut.error(), nullptr);
}

TEST_F(ADll, WithASymbolAtTheAddressNull_HasNoError) {
  Dll sut(pluginPath());

  EXPECT_EQ(sut.symbol("symbolAtNull"), nullptr);

  EXPECT_EQ(sut.error(), nullptr);
}

TEST_F(ADll, ThatDidNotOpen_ResolvesNothing) {
  Dll sut(directory.file("libmissing.so"));

  EXPECT_EQ(sut.symbol("countCalls"), nullptr);

  ASSERT_NE(sut.error(), nullptr);
  EXPECT_THAT(sut.error(), HasSubstr("libmissing.so"));
  EXPECT_THAT(sut.error(), HasSubstr("countCalls"));
}

TEST_F(ADll, ShowsItsSymbolsToNoOther) {
  Dll plugin(pluginPath());
  Dll sut(libraryDirectory() / "libplatform_plugin_needing.so");
  ASSERT_EQ(sut.error(), nullptr);

  sut.symbol("countCalls");

  EXPECT_NE(sut.error(), nullptr);
}

TEST_F(ADll, NeverShowsTheErrorsOfAnotherThread) {
  concurrently(4, [&](std::size_t thread) {
    const std::string name = "libmissing" + std::to_string(thread) + ".so";
    for (int i = 0; i < 50; ++i) {
      Dll failing(name);
      Dll sut(pluginPath());
      ASSERT_EQ(sut.error(), nullptr);
      ASSERT_THAT(failing.error(), HasSubstr(name));
    }
  });
}

TEST_F(ADll, IsCountedAsLongAsItLives) {
  const auto before = OpenLibraries::objects();
  {
    Dll open(pluginPath());
    Dll failed("libmissing.so");
    EXPECT_EQ(OpenLibraries::objects(), before + 2);
    EXPECT_EQ(OpenLibraries::placeOf(pluginPath()), pluginPath());
    EXPECT_EQ(OpenLibraries::placeOf("libmissing.so"), "");
  }

  EXPECT_EQ(OpenLibraries::objects(), before);
  EXPECT_EQ(OpenLibraries::placeOf(pluginPath()), "");
}

TEST_F(ADll, MakesServicesThatAreUsedAsTheirBases) {
  Dll sut(pluginPath());
  auto* const create = reinterpret_cast<Service* (*)()>(sut.symbol("createPluginService"));

  const std::unique_ptr<Executable> service(create());

  EXPECT_NE(dynamic_cast<Threadable*>(service.get()), nullptr);
}

}  // namespace
}  // namespace zerva
