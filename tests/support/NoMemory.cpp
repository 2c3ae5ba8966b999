#include "tests/support/NoMemory.h"

#include <cstddef>
#include <cstdlib>
#include <new>
#include <utility>

namespace zerva {

namespace {

thread_local int left = 0;
thread_local const std::function<void()>* before = nullptr;

void workBefore() {
  if (before == nullptr) return;
  const std::function<void()>* const work = std::exchange(before, nullptr);
  (*work)();
  before = work;
}

}  // namespace

void letAllocationFail(int nth) { left = nth; }

bool allocationIsToFail() { return left > 0; }

void beforeEachAllocation(const std::function<void()>* work) { before = work; }

}  // namespace zerva

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
  zerva::workBefore();
  if (zerva::left > 0 && --zerva::left == 0) throw std::bad_alloc();
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}

// As the library's own does; a sanitizer brings another one.
__attribute__((visibility("default"))) void* operator new[](std::size_t size) {
  return operator new(size);
}

// The library sorts with what this one gives, and gives it back to those below.
__attribute__((visibility("default"))) void* operator new(std::size_t size,
                                                          const std::nothrow_t& /*none*/) noexcept {
  if (zerva::left > 0 && --zerva::left == 0) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

__attribute__((visibility("default"))) void* operator new[](std::size_t size,
                                                            const std::nothrow_t& none) noexcept {
  return operator new(size, none);
}

__attribute__((visibility("default"))) void operator delete(void* memory) noexcept {
  std::free(memory);
}

__attribute__((visibility("default"))) void operator delete(void* memory,
                                                            std::size_t /*size*/) noexcept {
  std::free(memory);
}

__attribute__((visibility("default"))) void operator delete[](void* memory) noexcept {
  std::free(memory);
}

__attribute__((visibility("default"))) void operator delete[](void* memory,
                                                              std::size_t /*size*/) noexcept {
  std::free(memory);
}
