#include "host/check/ParsedLine.h"

#include <algorithm>
#include <utility>

namespace zerva {
namespace {

constexpr char blanks[] = " \t\n\v\f\r";
constexpr std::size_t tokensWithMode = 6;

/** A text with normalised spacing, and for each of its characters where it comes from. */
struct Normalised {
  std::string text;
  std::vector<std::size_t> columns;
};

Normalised normalise(const std::string& text) {
  Normalised result;
  bool glued = false;
  for (std::size_t begin = text.find_first_not_of(blanks); begin != std::string::npos;) {
    const std::size_t end = std::min(text.find_first_of(blanks, begin), text.size());
    if (!result.text.empty() && !glued) {
      result.text += ' ';
      result.columns.push_back(begin);
    }
    const bool first = result.text.empty();
    for (std::size_t at = begin; at < end; ++at) {
      result.text += text[at];
      result.columns.push_back(at + 1);
    }
    glued = first && result.text.find(':') == result.text.size() - 1;
    begin = text.find_first_not_of(blanks, end);
  }
  return result;
}

Keyword keywordOf(const std::vector<std::string>& tokens) {
  if (tokens.empty() || tokens[0] == "comment") return Keyword::None;
  const auto& known = directiveKeywords();
  const auto found = std::find(known.begin(), known.end(), tokens[0]);
  if (found == known.end()) return Keyword::Unknown;
  return static_cast<Keyword>(static_cast<int>(Keyword::ServiceInstance) + (found - known.begin()));
}

}  // namespace

const std::vector<std::string>& directiveKeywords() {
  static const std::vector<std::string> words = {"service_instance", "service_info",
                                                 "service_legacy",   "invoker_info",
                                                 "proxy_info",       "start_process"};
  return words;
}

std::vector<Word> placeTokens(const std::string& text, const std::vector<std::string>& tokens) {
  const Normalised normalised = normalise(text);
  const std::size_t behind = text.find_last_not_of(blanks) + 2;
  std::vector<Word> words;
  std::size_t at = 0;
  for (const std::string& token : tokens) {
    words.push_back({token, at < normalised.columns.size() ? normalised.columns[at] : behind});
    at += token.size() + 1;
  }
  return words;
}

ParsedLine::ParsedLine(DirectiveLine line)
    : line_(std::move(line)),
      words_(placeTokens(line_.text, line_.tokens)),
      keyword_(keywordOf(line_.tokens)),
      nothing_{"", line_.text.find_last_not_of(blanks) + 2} {}

bool ParsedLine::isChannelService() const {
  return keyword_ == Keyword::ServiceInstance || keyword_ == Keyword::ServiceInfo;
}

bool ParsedLine::isService() const {
  return isChannelService() || keyword_ == Keyword::ServiceLegacy;
}

bool ParsedLine::isRecord() const {
  return keyword_ == Keyword::InvokerInfo || keyword_ == Keyword::ProxyInfo;
}

bool ParsedLine::hasMode() const {
  return keyword_ != Keyword::None && (words_[1].text == "MT" || words_[1].text == "ST");
}

bool ParsedLine::breaksOff() const { return hasMode() && words_.size() < tokensWithMode; }

const Word& ParsedLine::field(std::size_t index) const {
  const std::size_t at = firstField() + index;
  return keyword_ != Keyword::None && at < words_.size() ? words_[at] : nothing_;
}

std::size_t ParsedLine::firstInterface() const {
  // For a legacy service it is the fourth token, whether there is a mode or not.
  return keyword_ == Keyword::ServiceLegacy ? 3 : firstField() + (isRecord() ? 2 : 3);
}

std::vector<Word> ParsedLine::interfaces() const {
  std::vector<Word> found;
  if (!isService() && !isRecord()) return found;
  const std::size_t first = firstInterface();
  const std::size_t end = isRecord() ? std::min(first + 1, words_.size()) : words_.size();
  for (std::size_t at = first; at < end; ++at) {
    if (!words_[at].empty()) found.push_back(words_[at]);
  }
  return found;
}

std::string ParsedLine::interfaceList() const {
  std::string list;
  for (std::size_t at = firstInterface(); at < words_.size(); ++at) {
    list += (at == firstInterface() ? "" : " ") + words_[at].text;
  }
  return list;
}

}  // namespace zerva
