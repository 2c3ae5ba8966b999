#include <dlfcn.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <unistd.h>

#include <chrono>
#include <new>

#include "framework/Process.h"
#include "runtime/libClientUtils/StartedProcesses.h"
#include "tests/support/NoMemory.h"

namespace {

using namespace zerva;

int spawned = 0;

// A program that ran when the memory for its record was found to be missing was killed, which it
// survived long enough to leave files behind and half of what it had begun.
TEST(AProcess, ThatThereIsNoMemoryFor_IsNotStartedAtAll) {
  char program[] = "true";
  char* arguments[] = {program, nullptr};
  for (int nth = 1;; ++nth) {
    spawned = 0;
    letAllocationFail(nth);
    try {
      Process sut(1, arguments, environ, nullptr);
      EXPECT_EQ(spawned, 1);
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(spawned, 0) << "allocation " << nth;
    }
    if (allocationIsToFail()) break;
  }
  letAllocationFail(0);
  StartedProcesses::terminateAll(std::chrono::seconds(1));
  EXPECT_EQ(StartedProcesses::objects(), 0U);
}

}  // namespace

// Stands before the system's, for the library too.
extern "C" __attribute__((visibility("default"))) int posix_spawnp(
    pid_t* id, const char* file, const posix_spawn_file_actions_t* actions,
    const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {
  ++spawned;
  const auto systems = reinterpret_cast<decltype(&posix_spawnp)>(dlsym(RTLD_NEXT, "posix_spawnp"));
  return systems(id, file, actions, attributes, arguments, environment);
}
