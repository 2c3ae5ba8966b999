#include <gmock/gmock.h>

#include "tests/binary/SourceText.h"
#include "tests/support/FileText.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/**
 * The system passes every exception on, reads no environment, and leaves threads, locks and
 * libraries to the platform.
 */
const std::vector<std::string> kBannedWords = {"getenv",
                                               "secure_getenv",
                                               "catch",
                                               "dlopen",
                                               "dlsym",
                                               "dlclose",
                                               "pthread_*",
                                               "std::mutex",
                                               "std::thread",
                                               "std::jthread",
                                               "std::async",
                                               "std::future",
                                               "std::promise",
                                               "std::lock_*",
                                               "std::unique_lock",
                                               "std::scoped_*",
                                               "std::shared_*",
                                               "std::atomic*",
                                               "std::latch",
                                               "std::barrier",
                                               "std::condition_variable*",
                                               "std::recursive_*",
                                               "counting_semaphore",
                                               "binary_semaphore",
                                               "sem_*",
                                               "system",
                                               "fork",
                                               "exit",
                                               "abort"};

const std::vector<std::string> kBannedFolders = {"runtime/", "tests/", "host/", "registry/",
                                                 "rmi/"};

void expectNoBannedWords(const std::string& folder) {
  const std::vector<std::filesystem::path> files = zerva::sourcesBelow(folder);
  EXPECT_FALSE(files.empty());
  for (const std::filesystem::path& file : files) {
    EXPECT_THAT(zerva::findWords(zerva::codeOnly(zerva::readFile(file)), kBannedWords), IsEmpty())
        << file;
  }
}

void expectNoIncludesOfOthers(const std::string& folder) {
  for (const std::filesystem::path& file : zerva::sourcesBelow(folder)) {
    for (const std::string& include : zerva::includesOf(zerva::readFile(file))) {
      for (const std::string& banned : kBannedFolders) {
        EXPECT_FALSE(include.starts_with(banned)) << file << " includes " << include;
      }
    }
  }
}

TEST(TheSystemsSources, HoldNoWordOfWhatIsThePlatforms) { expectNoBannedWords("src"); }

TEST(ThePublicHeaders, HoldNoWordOfWhatIsThePlatforms) { expectNoBannedWords("include"); }

TEST(TheSystemsSources, IncludeNothingBeyondTheContract) { expectNoIncludesOfOthers("src"); }

TEST(ThePublicHeaders, IncludeNothingBeyondTheContract) { expectNoIncludesOfOthers("include"); }

TEST(ThePublicHeaders, IncludeNothingOfTheSystemsInside) {
  for (const std::filesystem::path& file : zerva::sourcesBelow("include")) {
    for (const std::string& include : zerva::includesOf(zerva::readFile(file))) {
      EXPECT_FALSE(include.starts_with("src/")) << file << " includes " << include;
    }
  }
}

TEST(ThePublicHeaders, IncludeNoHeaderOfTheOperatingSystem) {
  for (const std::filesystem::path& file : zerva::sourcesBelow("include")) {
    for (const std::string& include : zerva::includesOf(zerva::readFile(file))) {
      const bool systems = include.starts_with("sys/") || include == "unistd.h" ||
                           include == "pthread.h" || include == "syslog.h" || include == "dlfcn.h";
      EXPECT_FALSE(systems) << file << " includes " << include;
    }
  }
}

// The gate itself: one that finds nothing would always be passed.

TEST(TheGate, FindsABannedWordInCode) {
  EXPECT_THAT(zerva::findWords(zerva::codeOnly("try { f(); } catch (...) {}"), kBannedWords),
              ElementsAre("catch"));
}

TEST(TheGate, FindsAWordByItsBeginning) {
  EXPECT_THAT(zerva::findWords("pthread_mutex_lock(&mutex);", kBannedWords),
              ElementsAre("pthread_*"));
}

TEST(TheGate, LeavesAWordInACommentAlone) {
  EXPECT_THAT(zerva::findWords(zerva::codeOnly("// catch\n/* getenv\n */ f();"), kBannedWords),
              IsEmpty());
}

TEST(TheGate, LeavesAWordInATextAlone) {
  EXPECT_THAT(zerva::findWords(zerva::codeOnly("f(\"a \\\" catch\", '\"');"), kBannedWords),
              IsEmpty());
}

TEST(TheGate, FindsAWordAfterACommentAndAText) {
  EXPECT_THAT(zerva::findWords(zerva::codeOnly("/* a */ f(\"b\"); getenv(c);"), kBannedWords),
              ElementsAre("getenv"));
}

TEST(TheGate, LeavesAWordInsideALongerOneAlone) {
  EXPECT_THAT(zerva::findWords("dispatch_exit(subsystem);", kBannedWords), IsEmpty());
}

TEST(TheGate, ReadsIncludesOfBothForms) {
  EXPECT_THAT(zerva::includesOf("#include <string>\n#include \"a/b.h\"\n"),
              ElementsAre("string", "a/b.h"));
}

}  // namespace
