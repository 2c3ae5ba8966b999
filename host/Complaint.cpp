#include "host/Complaint.h"

#include <unistd.h>

#include <cstddef>
#include <cstdio>

#include "runtime/libLoggingHandler/JournalStream.h"

namespace zerva {

void printError(std::string_view before, std::string_view text, Priority priority) {
  const bool journal = leadsToJournal(STDERR_FILENO);
  while (true) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    // One call a line, so that those of several threads do not mix.
    const auto length = [](std::string_view part) { return static_cast<int>(part.size()); };
    if (journal) {
      std::fprintf(stderr, "<%d>%.*s%.*s\n", static_cast<int>(priority), length(before),
                   before.data(), length(line), line.data());
    } else {
      std::fprintf(stderr, "%.*s%.*s\n", length(before), before.data(), length(line), line.data());
    }
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
    before = "";
  }
}

void complain(std::string_view text, Priority priority) { printError("zerva: ", text, priority); }

}  // namespace zerva
