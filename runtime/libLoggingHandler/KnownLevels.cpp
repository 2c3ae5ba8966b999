#include "runtime/libLoggingHandler/KnownLevels.h"

#include <cstdint>
#include <cstring>

namespace zerva {

KnownLevels& KnownLevels::ofThisThread() {
  static thread_local constinit KnownLevels known;
  return known;
}

std::optional<int> KnownLevels::find(const char* module, unsigned generation) const {
  const Entry& entry = entries_[place(module)];
  if (entry.generation != generation || std::strcmp(entry.module, module) != 0) return {};
  return entry.level;
}

void KnownLevels::keep(const char* module, unsigned generation, int level) {
  const std::size_t size = std::strlen(module) + 1;
  Entry& entry = entries_[place(module)];
  if (size > sizeof entry.module) return;
  std::memcpy(entry.module, module, size);
  entry.generation = generation;
  entry.level = level;
}

// Modules are literals nearly always, so the address finds the place without reading the text.
std::size_t KnownLevels::place(const char* module) {
  return (reinterpret_cast<std::uintptr_t>(module) >> 3U) % kEntries;
}

}  // namespace zerva
