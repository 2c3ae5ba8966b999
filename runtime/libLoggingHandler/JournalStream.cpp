#include "runtime/libLoggingHandler/JournalStream.h"

#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace zerva {

bool leadsToJournal(int descriptor) {
  const char* const stream = std::getenv("JOURNAL_STREAM");
  struct stat status {};
  if (stream == nullptr || ::fstat(descriptor, &status) != 0) return false;
  std::array<char, 48> own{};  // two numbers of twenty digits
  std::snprintf(own.data(), own.size(), "%llu:%llu", static_cast<unsigned long long>(status.st_dev),
                static_cast<unsigned long long>(status.st_ino));
  return std::string_view(own.data()) == stream;
}

}  // namespace zerva
