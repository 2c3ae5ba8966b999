#pragma once

#include <cstddef>
#include <mutex>

#include "framework/Export.h"

namespace zerva {

/**
 * Memory for objects of one size, apart from all other memory. It is for the few large ones that
 * every service has.
 *
 * Whenever a library is opened or closed the loader goes through its list of all libraries, which
 * lies in the heap. What is got between two libraries stretches that list over more pages.
 *
 * What is given back is used again for the same kind; it stays with the process. Any thread, also
 * while the process ends.
 */
class ZERVA_EXPORT Slab {
 public:
  /** @param size of each, in bytes. */
  constexpr explicit Slab(std::size_t size) : size_((size + kAlignment - 1) & ~(kAlignment - 1)) {}
  Slab(const Slab&) = delete;
  Slab& operator=(const Slab&) = delete;

  /**
   * @returns memory for one, aligned for any type.
   * @throws std::bad_alloc
   */
  void* take();

  /** @param memory what `take` returned. */
  void give(void* memory) noexcept;

 private:
  struct Free {
    Free* next;
  };

  static constexpr std::size_t kAlignment = alignof(std::max_align_t);

  const std::size_t size_;
  std::mutex mutex_;
  // Guarded by mutex_.
  Free* free_ = nullptr;
  char* unused_ = nullptr;  // the rest of the newest piece
  std::size_t unusedSize_ = 0;
};

/** Puts what `std::allocate_shared` makes into a slab of its own. */
template <typename T>
struct SlabAllocator {
  using value_type = T;

  SlabAllocator() = default;
  template <typename Other>
  SlabAllocator(const SlabAllocator<Other>& /*other*/) {}

  T* allocate(std::size_t /*one*/) { return static_cast<T*>(slab.take()); }
  void deallocate(T* memory, std::size_t /*one*/) noexcept { slab.give(memory); }

  template <typename Other>
  bool operator==(const SlabAllocator<Other>& /*other*/) const {
    return true;
  }

  static_assert(alignof(T) <= alignof(std::max_align_t));
  static constinit inline Slab slab{sizeof(T)};
};

}  // namespace zerva
