#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "framework/Export.h"

namespace zerva {

// A process's list of the names that it serves; docs/wire-format.md describes it byte for byte.

/** Most names of one process that are served to others. */
inline constexpr std::size_t kMaximumNames = 65536;

/** Most bytes of the names of one process that are served to others. */
inline constexpr std::size_t kMaximumNameBytes = std::size_t{16} * 1024 * 1024;

/** Most bytes of a whole list, names that are not served any more included. */
inline constexpr std::size_t kMaximumJournal = 4 * kMaximumNameBytes;

/** When each name began to be served, in nanoseconds of the machine's monotonic clock. */
using ServedNames = std::unordered_map<std::string, std::uint64_t>;

/** @returns what a list begins with. */
ZERVA_EXPORT std::string journalHeader();

/** @returns the record that a name is served from now on. @param name at most `kMaximumName`. */
ZERVA_EXPORT std::string servedRecord(std::string_view name, std::uint64_t since);

/** @returns the record that a name is not served any more. */
ZERVA_EXPORT std::string unservedRecord(std::string_view name, std::uint64_t now);

/** Reads a list as it grows. It may be anything, and end in the middle of a record. */
class ZERVA_EXPORT JournalParser {
 public:
  /** Takes the bytes that follow those taken before. @returns false for ever once they are bad. */
  bool feed(std::string_view bytes);

  /**
   * Forgets the beginning of a record whose end has not come; its writer may take it back.
   *
   * @returns how many bytes have to be fed again.
   */
  std::size_t takeBackPartial();

  const ServedNames& names() const { return names_; }

 private:
  /** What was found at the front of the bytes. */
  enum class Found { Whole, Incomplete, Bad };
  Found takeHeader(std::string_view& bytes);
  Found takeRecord(std::string_view& bytes);

  std::string left_;
  bool begun_ = false;
  bool good_ = true;
  std::size_t size_ = 0;
  ServedNames names_;
};

}  // namespace zerva
