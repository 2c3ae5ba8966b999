#include "host/MemoryReserve.h"

#include <sys/mman.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <new>

namespace zerva {
namespace {

// Address space, not blocks of the heap: a thread that has no heap of its own yet gets nothing of
// what others give back to theirs. A part has room for one.
constexpr std::size_t kPart = std::size_t{2} * 1024 * 1024;

/** Reached from the handler, which the language calls without any object. */
std::array<std::atomic<void*>, 4>& parts() {
  static std::array<std::atomic<void*>, 4> all{};
  return all;
}

bool giveUp(std::atomic<void*>& part) {
  void* const memory = part.exchange(nullptr);
  return memory != nullptr && ::munmap(memory, kPart) == 0;
}

void giveUpAPart() {
  for (auto& part : parts()) {
    if (giveUp(part)) return;
  }
  throw std::bad_alloc();
}

void giveUpAll() {
  for (auto& part : parts()) giveUp(part);
}

}  // namespace

MemoryReserve::MemoryReserve() {
  for (auto& part : parts()) {
    // Nothing is ever written there, so no page of it is.
    void* const memory =
        ::mmap(nullptr, kPart, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) {
      giveUpAll();
      throw std::bad_alloc();
    }
    part = memory;
  }
}

MemoryReserve::~MemoryReserve() {
  std::set_new_handler(nullptr);
  giveUpAll();
}

// It is the process's, so it is there to be opened only while there is an object.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
void MemoryReserve::open() { std::set_new_handler(&giveUpAPart); }

}  // namespace zerva
