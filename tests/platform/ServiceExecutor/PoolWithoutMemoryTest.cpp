#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <utility>

#include "framework/ServiceThreadPool.h"
#include "tests/platform/ClientUtils/ThreadReports.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::threadCount;
using zerva::waitUntil;

/** Whether there is no memory when the calling thread asks the next time. */
thread_local bool thereIsNone = false;

// The thread needs memory the first time that it waits, and ends without. The pool may not rely on
// it then.
TEST(APool, WhoseThreadHasNoMemoryToWait_RunsTheNextTaskAllTheSame) {
  ServiceThreadPool sut(1, nullptr);
  const auto before = threadCount();
  std::atomic<int> done{0};
  ASSERT_TRUE(sut.execute([&] {
    thereIsNone = true;
    ++done;
  }));
  ASSERT_TRUE(waitUntil([&] { return done == 1 && threadCount() == before; }));

  ASSERT_TRUE(sut.execute([&] { ++done; }));

  EXPECT_TRUE(waitUntil([&] { return done == 2; }));
}

}  // namespace

void* operator new(std::size_t size) {
  if (std::exchange(thereIsNone, false)) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

// Inlined, the compiler would see memory of `new` given to `free`.
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }

[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
