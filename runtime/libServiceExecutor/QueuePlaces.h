#pragma once

#include <cstddef>
#include <new>

#include "runtime/libClientUtils/Spares.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace zerva {

/** What the places in the executors' queues are kept in. */
Spares& spareQueuePlaces();

/** Memory for the places in the executors' queues, all of one size. */
template <typename T>
struct QueuePlaces {
  using value_type = T;

  QueuePlaces() = default;
  template <typename Other>
  explicit QueuePlaces(const QueuePlaces<Other>& /*other*/) {}

  T* allocate(std::size_t /*one*/) {
    static_assert(sizeof(T) >= sizeof(Spare));
    static_assert(alignof(T) >= alignof(Spare));
    void* place = spareQueuePlaces().take();
    if (place == nullptr) place = ::operator new(sizeof(T));
#if defined(__SANITIZE_ADDRESS__)
    ASAN_UNPOISON_MEMORY_REGION(place, sizeof(T));
#endif
    return static_cast<T*>(place);
  }

  void deallocate(T* place, std::size_t /*one*/) {
#if defined(__SANITIZE_ADDRESS__)
    ASAN_POISON_MEMORY_REGION(place, sizeof(T));
    ASAN_UNPOISON_MEMORY_REGION(place, sizeof(Spare));
#endif
    spareQueuePlaces().give(place);
  }

  template <typename Other>
  bool operator==(const QueuePlaces<Other>& /*other*/) const {
    return true;
  }
};

}  // namespace zerva
