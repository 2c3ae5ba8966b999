// Memory allocation that can fail.

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "tests/faults/FaultyCalls.h"

namespace {

using zerva::fault::hits;
using zerva::fault::Kind;

/** As the language says it: who has something to give back is asked first. */
template <typename Take>
void* takeOrThrow(const Take& take) {
  void* memory = hits(Kind::New) ? nullptr : take();
  while (memory == nullptr) {
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
    memory = take();
  }
  return memory;
}

void* allocate(std::size_t size) {
  return takeOrThrow([size] { return std::malloc(size); });
}

void* allocateAligned(std::size_t size, std::align_val_t alignment) {
  return takeOrThrow([size, alignment] {
    void* memory = nullptr;
    return posix_memalign(&memory, static_cast<std::size_t>(alignment), size) == 0 ? memory
                                                                                   : nullptr;
  });
}

}  // namespace

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
  return allocate(size);
}
__attribute__((visibility("default"))) void* operator new[](std::size_t size) {
  return allocate(size);
}
__attribute__((visibility("default"))) void* operator new(std::size_t size,
                                                          const std::nothrow_t&) noexcept {
  return hits(Kind::New) ? nullptr : std::malloc(size);
}
__attribute__((visibility("default"))) void* operator new[](std::size_t size,
                                                            const std::nothrow_t&) noexcept {
  return hits(Kind::New) ? nullptr : std::malloc(size);
}
__attribute__((visibility("default"))) void* operator new(std::size_t size,
                                                          std::align_val_t alignment) {
  return allocateAligned(size, alignment);
}
__attribute__((visibility("default"))) void* operator new[](std::size_t size,
                                                            std::align_val_t alignment) {
  return allocateAligned(size, alignment);
}
__attribute__((visibility("default"))) void operator delete(void* memory) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete[](void* memory) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete(void* memory,
                                                            std::align_val_t) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete[](void* memory,
                                                              std::align_val_t) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete(void* memory, std::size_t,
                                                            std::align_val_t) noexcept {
  std::free(memory);
}
__attribute__((visibility("default"))) void operator delete[](void* memory, std::size_t,
                                                              std::align_val_t) noexcept {
  std::free(memory);
}

// The sanitizers have these functions already, and must keep them.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* faultyMalloc(std::size_t size) ZERVA_FAULTY("malloc");
void* faultyCalloc(std::size_t count, std::size_t size) ZERVA_FAULTY("calloc");
void* faultyRealloc(void* memory, std::size_t size) ZERVA_FAULTY("realloc");

void* faultyMalloc(std::size_t size) {
  if (!hits(Kind::Malloc)) return __libc_malloc(size);
  errno = ENOMEM;
  return nullptr;
}

void* faultyCalloc(std::size_t count, std::size_t size) {
  if (!hits(Kind::Malloc)) return __libc_calloc(count, size);
  errno = ENOMEM;
  return nullptr;
}

void* faultyRealloc(void* memory, std::size_t size) {
  if (!hits(Kind::Malloc)) return __libc_realloc(memory, size);
  errno = ENOMEM;
  return nullptr;
}
}

#endif
