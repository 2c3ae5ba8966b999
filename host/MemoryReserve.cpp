#include "host/MemoryReserve.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace zerva {
namespace {

// Small enough to come from the heap, and so to go back to it.
constexpr std::size_t kPart = std::size_t{16} * 1024;

/** Reached from the handler, which the language calls without any object. */
std::array<std::atomic<void*>, 16>& parts() {
  static std::array<std::atomic<void*>, 16> all{};
  return all;
}

void giveUpAPart() {
  for (auto& part : parts()) {
    if (void* const memory = part.exchange(nullptr); memory != nullptr) {
      std::free(memory);
      return;
    }
  }
  throw std::bad_alloc();
}

void giveUpAll() {
  for (auto& part : parts()) std::free(part.exchange(nullptr));
}

}  // namespace

MemoryReserve::MemoryReserve() {
  for (auto& part : parts()) {
    part = std::malloc(kPart);
    if (part == nullptr) {
      giveUpAll();
      throw std::bad_alloc();
    }
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
