#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <vector>

#include "runtime/libClientUtils/Slab.h"
#include "tests/support/Concurrently.h"

namespace zerva {
namespace {

constexpr std::size_t kSize = 200;

constinit Slab sut{kSize};

/** Tells one from another by what it has written into it. */
struct Mark {
  explicit Mark(unsigned char byte) : memory(sut.take()), byte_(byte) {
    std::memset(memory, byte, kSize);
  }
  ~Mark() { sut.give(memory); }
  Mark(const Mark&) = delete;
  Mark& operator=(const Mark&) = delete;

  bool isWhole() const {
    const auto* bytes = static_cast<const unsigned char*>(memory);
    for (std::size_t i = 0; i < kSize; ++i) {
      if (bytes[i] != byte_) return false;
    }
    return true;
  }

  void* const memory;

 private:
  const unsigned char byte_;
};

TEST(ASlab, GivesEachOneMemoryOfItsOwn) {
  constexpr int kMoreThanOnePiece = 3000;
  std::vector<std::unique_ptr<Mark>> marks;
  for (int i = 0; i < kMoreThanOnePiece; ++i) {
    marks.push_back(std::make_unique<Mark>(static_cast<unsigned char>(i)));
  }
  for (const auto& mark : marks) EXPECT_TRUE(mark->isWhole());
}

TEST(ASlab, AlignsForAnyType) {
  constinit static Slab odd{3};
  for (int i = 0; i < 3; ++i) {
    void* const memory = odd.take();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(std::max_align_t), 0u);
    odd.give(memory);
  }
}

#ifndef __SANITIZE_ADDRESS__
TEST(ASlab, UsesAgainWhatWasGivenBack) {
  std::set<void*> used;
  for (int i = 0; i < 10; ++i) used.insert(Mark(1).memory);
  EXPECT_EQ(used.size(), 1u);
}
#endif

TEST(ASlab, IsForManyThreads) {
  concurrently(4, [](std::size_t thread) {
    for (int round = 0; round < 200; ++round) {
      std::vector<std::unique_ptr<Mark>> marks;
      for (int i = 0; i < 20; ++i) {
        marks.push_back(std::make_unique<Mark>(static_cast<unsigned char>(thread)));
      }
      for (const auto& mark : marks) ASSERT_TRUE(mark->isWhole());
    }
  });
}

TEST(ASlab, TakesWhatIsShared) {
  const std::weak_ptr<int> gone = std::allocate_shared<int>(SlabAllocator<int>(), 3);
  EXPECT_TRUE(gone.expired());
  const auto here = std::allocate_shared<int>(SlabAllocator<int>(), 4);
  EXPECT_EQ(*here, 4);
}

}  // namespace
}  // namespace zerva
