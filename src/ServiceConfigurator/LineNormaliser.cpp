#include "src/ServiceConfigurator/LineNormaliser.h"

#include <cstddef>
#include <locale>
#include <string>
#include <string_view>

namespace zerva {

namespace {

/** A keyword is glued to its first field. One with an earlier colon is no keyword of that kind. */
bool isKeyword(std::string_view word) { return word.find(':') == word.size() - 1; }

}  // namespace

// Words are told apart as a stream does, at a fraction of what it takes to make one. They only
// ever move towards the front, so no other memory is needed.
void normaliseLine(std::string& text) {
  const std::locale global;
  const auto& characters = std::use_facet<std::ctype<char>>(global);
  char* const begin = text.data();
  const char* const end = begin + text.size();
  char* written = begin;
  bool glued = true;
  for (const char* next = begin;;) {
    const char* const word = characters.scan_not(std::ctype_base::space, next, end);
    if (word == end) {
      break;
    }
    next = characters.scan_is(std::ctype_base::space, word, end);
    const bool first = written == begin;
    if (!glued) {
      *written++ = ' ';
    }
    glued = first && isKeyword({word, static_cast<std::size_t>(next - word)});
    const auto length = static_cast<std::size_t>(next - word);
    std::char_traits<char>::move(written, word, length);
    written += length;
  }
  text.resize(static_cast<std::size_t>(written - begin));
}

}  // namespace zerva
