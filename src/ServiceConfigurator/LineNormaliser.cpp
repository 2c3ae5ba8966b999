#include "src/ServiceConfigurator/LineNormaliser.h"

#include <cstddef>
#include <locale>
#include <string_view>
#include <utility>
#include <vector>

namespace zerva {

namespace {

/** As a stream reads them, at a fraction of what it takes to make one. */
std::vector<std::string_view> wordsOf(const std::string& text) {
  const std::locale global;
  const auto& characters = std::use_facet<std::ctype<char>>(global);
  const char* const end = text.data() + text.size();
  std::vector<std::string_view> words;
  for (const char* next = text.data();;) {
    const char* const word = characters.scan_not(std::ctype_base::space, next, end);
    if (word == end) {
      return words;
    }
    next = characters.scan_is(std::ctype_base::space, word, end);
    words.emplace_back(word, static_cast<std::size_t>(next - word));
  }
}

/** A keyword is glued to its first field. One with an earlier colon is no keyword of that kind. */
bool isKeyword(std::string_view word) { return word.find(':') == word.size() - 1; }

}  // namespace

void normaliseLine(std::string& text) {
  const std::vector<std::string_view> words = wordsOf(text);
  std::string result;
  result.reserve(text.size());
  for (std::size_t index = 0; index < words.size(); ++index) {
    result += words[index];
    const bool last = index + 1 == words.size();
    const bool glued = index == 0 && isKeyword(words[index]);
    if (!last && !glued) {
      result += ' ';
    }
  }
  text = std::move(result);
}

}  // namespace zerva
