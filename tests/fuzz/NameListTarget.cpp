// Input: a byte that says in which pieces the rest is read, and another process's list of names.

#include <cstdint>
#include <optional>
#include <string>

#include "runtime/libClientUtils/bus/NameRecords.h"
#include "tests/fuzz/FuzzTarget.h"

using namespace zerva;
using namespace zerva::fuzz;

namespace {

constexpr std::size_t kSmallestRecord = 11;

void checkNames(const JournalParser& parser, std::size_t fed) {
  std::size_t bytes = 0;
  for (const auto& [name, since] : parser.names()) bytes += name.size() + kSmallestRecord;
  require(bytes <= fed, "no more is kept than was read");
}

/** Feeds a list in pieces; in between its reader begins anew where the last record began. */
bool feedInPieces(JournalParser& parser, std::string_view list, std::size_t piece) {
  std::size_t at = 0;
  bool takeBack = false;
  bool good = parser.feed({});
  while (good && at < list.size()) {
    const std::string_view next = list.substr(at, piece);
    good = parser.feed(next);
    at += next.size();
    checkNames(parser, at);
    const std::size_t partial = good && takeBack ? parser.takeBackPartial() : 0;
    require(partial <= at, "no more is taken back than was fed");
    // At once as a whole with the next piece, or it would be taken back for ever.
    if (partial > 0) good = parser.feed(list.substr(at - partial, partial));
    takeBack = !takeBack;
  }
  return good;
}

std::uint64_t numberOf(std::string_view bytes) {
  std::uint64_t number = 0;
  for (const char byte : bytes) number = number * 256 + static_cast<unsigned char>(byte);
  return number;
}

/** @returns what a list says, record by record, and nothing for one that is bad. */
std::optional<ServedNames> namesByTheRules(std::string_view list) {
  constexpr std::string_view header("ZRVN\0\1", 6);
  if (list.size() < header.size()) return ServedNames();
  if (list.substr(0, header.size()) != header) return std::nullopt;
  ServedNames names;
  for (list.remove_prefix(header.size()); !list.empty();) {
    if (list[0] != '+' && list[0] != '-') return std::nullopt;
    if (list.size() < kSmallestRecord) break;
    const auto size = static_cast<std::size_t>(numberOf(list.substr(9, 2)));
    if (list.size() < kSmallestRecord + size) break;
    const std::string name(list.substr(kSmallestRecord, size));
    if (list[0] == '+') {
      names[name] = numberOf(list.substr(1, 8));
    } else {
      names.erase(name);
    }
    list.remove_prefix(kSmallestRecord + size);
  }
  return names;
}

std::string rewritten(const ServedNames& names) {
  std::string list = journalHeader();
  for (const auto& [name, since] : names) list += servedRecord(name, since);
  return list;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view list = textOf(data + 1, size - 1);
  JournalParser whole;
  const bool good = whole.feed(list);
  const auto expected = namesByTheRules(list);
  require(good == expected.has_value() && (!good || whole.names() == *expected),
          "a list says what its records say");
  JournalParser pieces;
  require(feedInPieces(pieces, list, std::size_t{data[0]} + 1) == good &&
              pieces.names() == whole.names(),
          "a list is the same however it is read");
  if (!good) {
    require(whole.names().empty() && !whole.feed(journalHeader()), "a bad list stays a bad one");
    return 0;
  }
  JournalParser again;
  require(again.feed(rewritten(whole.names())) && again.names() == whole.names(),
          "names that were read are written and read again");
  return 0;
}
