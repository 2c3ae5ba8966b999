#include "tests/fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zerva::fuzz {

std::string_view textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

void require(bool kept, const char* promise) {
  if (kept) return;
  std::fprintf(stderr, "not kept: %s\n", promise);
  std::abort();
}

}  // namespace zerva::fuzz
