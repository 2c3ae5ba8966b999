#include "host/Console.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace zerva {
namespace {

bool wantsColours() {
  const char* refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) == 1 && (refused == nullptr || *refused == '\0');
}

}  // namespace

Console::Console() : colours_(wantsColours()) {}

void Console::line(const std::string& text) {
  const std::string whole = text + "\n";
  // One call, so that lines of several threads do not mix; flushed, so that a reader of a pipe sees
  // things when they happen.
  std::fwrite(whole.data(), 1, whole.size(), stdout);
  flush();
}

std::string Console::good(const std::string& word) const {
  return colours_ ? "\033[32m" + word + "\033[0m" : word;
}

std::string Console::bad(const std::string& word) const {
  return colours_ ? "\033[31m" + word + "\033[0m" : word;
}

void Console::flush() { std::fflush(stdout); }

}  // namespace zerva
