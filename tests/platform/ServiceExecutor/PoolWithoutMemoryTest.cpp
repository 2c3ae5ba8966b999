#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <thread>
#include <utility>

#include "framework/ServiceThreadPool.h"
#include "tests/support/WaitUntil.h"

namespace {

using zerva::waitUntil;

/** Whether there is no memory when the calling thread asks the next time. */
thread_local bool thereIsNone = false;

TEST(APool, WhoseThreadHasNoMemoryToWait_RunsTheNextTaskOnItAllTheSame) {
  ServiceThreadPool sut(1, nullptr);
  std::atomic<int> done{0};
  ASSERT_TRUE(sut.execute([&] {
    thereIsNone = true;
    ++done;
  }));
  ASSERT_TRUE(waitUntil([&] { return done == 1; }));
  // Not for the next task alone, which the thread may take before it waits.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  bool noneWasWanted = false;
  ASSERT_TRUE(sut.execute([&] {
    noneWasWanted = std::exchange(thereIsNone, false);
    ++done;
  }));
  ASSERT_TRUE(waitUntil([&] { return done == 2; }));
  EXPECT_TRUE(noneWasWanted);
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
