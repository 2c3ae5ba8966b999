#include <gmock/gmock.h>

#include <set>

#include "tests/binary/BuiltLibrary.h"

// Not a part of the build that counts lines: the counters use the environment and the processes of
// the system themselves.
namespace {

using testing::Not;
using testing::StartsWith;

TEST(TheBuiltLibrary, TakesNothingFromTheSystemThatThePlatformIsThereFor) {
  const zerva::BuiltLibrary sut;
  const std::set<std::string> banned = {
      "getenv", "secure_getenv", "dlopen",      "dlsym",       "dlclose",  "dlmopen",
      "fork",   "vfork",         "posix_spawn", "execve",      "execvp",   "system",
      "popen",  "signal",        "sigaction",   "exit",        "_exit",    "abort",
      "setenv", "putenv",        "unsetenv",    "thrd_create", "mtx_lock", "cnd_wait"};
  for (const std::string& name : sut.importedNames()) {
    EXPECT_EQ(banned.count(name), 0U) << name;
    EXPECT_THAT(name, Not(StartsWith("pthread_"))) << name;
    EXPECT_THAT(name, Not(StartsWith("sem_"))) << name;
  }
}

}  // namespace
