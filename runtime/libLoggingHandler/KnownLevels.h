#pragma once

#include <array>
#include <cstddef>
#include <optional>

namespace zerva {

/**
 * The levels of the modules that one thread asked for last, so that asking again takes no lock.
 *
 * An answer holds for one generation of the configuration; whatever changes a level begins the next
 * one, and the answers of the one before are never given again. Modules are told apart by their
 * text: another library can be mapped where the text of a module was. Each thread has its own, in
 * place and without a destructor, so that it can be asked until the thread's very end.
 */
class KnownLevels {
 public:
  static KnownLevels& ofThisThread();

  /** @returns the level up to which the module is on, or nothing when it has to be looked up. */
  std::optional<int> find(const char* module, unsigned generation) const;

  /** Keeps a level in the place of another one; that of a module with a long name is not kept. */
  void keep(const char* module, unsigned generation, int level);

 private:
  struct Entry {
    unsigned generation = 0;  // no generation has this number
    int level = 0;
    char module[40] = {};
  };

  static constexpr std::size_t kEntries = 16;

  static std::size_t place(const char* module);

  std::array<Entry, kEntries> entries_;
};

}  // namespace zerva
