#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <new>

#include "runtime/libClientUtils/Slab.h"
#include "tests/support/NoMemory.h"

namespace zerva {
namespace {

constexpr std::size_t kSize = 200;

#ifndef __SANITIZE_ADDRESS__
// What was being made then was lost, though there was memory for it.
TEST(ASlab, WithoutMemoryForAPiece_GetsMemoryForOne) {
  constinit static Slab sut{kSize};
  letAllocationFail(1);

  void* const memory = sut.take();

  EXPECT_FALSE(allocationIsToFail());
  ASSERT_NE(memory, nullptr);
  std::memset(memory, 1, kSize);
  sut.give(memory);
  EXPECT_EQ(sut.take(), memory);
}
#endif

TEST(ASlab, WithoutMemory_Throws) {
  constinit static Slab sut{kSize};
  const std::function<void()> none = [] { letAllocationFail(1); };
  letAllocationFail(1);
  beforeEachAllocation(&none);

  EXPECT_THROW(sut.take(), std::bad_alloc);

  beforeEachAllocation(nullptr);
  letAllocationFail(0);
  void* const memory = sut.take();
  EXPECT_NE(memory, nullptr);
  sut.give(memory);
}

}  // namespace
}  // namespace zerva
