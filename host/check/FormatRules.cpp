#include "host/check/FormatRules.h"

#include <array>

#include "host/check/NearMiss.h"

namespace zerva {
namespace {

constexpr char byteOrderMark[] = "\xEF\xBB\xBF";

std::string firstWord(const std::string& text) { return text.substr(0, text.find(' ')); }

bool isKnown(const std::string& keyword) {
  for (const std::string& known : directiveKeywords()) {
    if (known == keyword) return true;
  }
  return false;
}

std::string nearKeyword(const std::string& word) {
  std::vector<std::string> known = directiveKeywords();
  known.emplace_back("comment");
  return nearMiss(word, known);
}

bool hasByteOrderMark(const ParsedLine& line) {
  return line.number() == 1 && line.text().rfind(byteOrderMark, 0) == 0;
}

bool hasBlankBeforeColon(const ParsedLine& line) {
  const std::string& keyword = line.words()[0].text;
  return !keyword.empty() && keyword.back() == ' ' &&
         isKnown(keyword.substr(0, keyword.size() - 1));
}

void byteOrderMarks(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::Unknown || !hasByteOrderMark(line)) return;
    findings.addAt(file, line, 1, sizeof byteOrderMark - 1,
                   "the file begins with a byte order mark, which makes the first keyword an "
                   "unknown one: the line only gives an error in the log.");
  });
}

void blankBeforeColon(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::Unknown || !hasBlankBeforeColon(line)) return;
    const Word& keyword = line.words()[0];
    const std::size_t colon = line.text().find(':');
    findings.addAt(file, line, keyword.column, colon + 2 - keyword.column,
                   "the blank before the colon belongs to the keyword, which so is not known: the "
                   "line only gives an error in the log.",
                   firstWord(keyword.text) + ":");
  });
}

void unknownKeyword(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() != Keyword::Unknown || hasByteOrderMark(line) || hasBlankBeforeColon(line)) {
      return;
    }
    Word keyword = line.words()[0];
    const std::string first = firstWord(keyword.text);
    const bool colonMissing = first != keyword.text && isKnown(first);
    if (colonMissing) keyword.text = first;
    findings.add(file, line, keyword,
                 colonMissing ? "the colon behind the keyword is missing: the line only gives an "
                                "error in the log."
                              : "the keyword " + quoted(keyword.text) +
                                    " is not known: the line only gives an error in the log.",
                 colonMissing ? first + ":" : nearKeyword(keyword.text));
  });
}

void noColon(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    const std::size_t begin = line.text().find_first_not_of(" \t\v\f\n");
    if (!line.line().tokens.empty() || begin == std::string::npos) return;
    const std::string text = line.text().substr(begin);
    const std::string word = text.substr(0, text.find_first_of(" \t\v\f\n"));
    const std::string keyword = isKnown(word) ? word : nearKeyword(word);
    findings.addAt(file, line, begin + 1, word.size(),
                   "the line has no colon, so it is skipped, and nobody tells.",
                   keyword.empty() ? "" : keyword + ":");
  });
}

/** A carriage return as the last character of a line is how some editors write lines. */
void textCutOff(const CheckSubject& subject, Findings& findings) {
  subject.forEachLineAtAll([&](const CheckedFile& file, const ParsedLine& line) {
    const std::size_t length = line.line().length;
    if (length > longestDirectiveLine || length <= line.text().size() + 1) return;
    findings.addAt(file, line, line.text().size() + 1, length - line.text().size(),
                   "what stands behind a carriage return or a zero byte is dropped.");
  });
}

/** Characters that look like blanks, or like nothing, and separate nothing. */
constexpr std::array<const char*, 8> unusualBlanks = {
    "\xC2\xA0",     "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x89",
    "\xE2\x80\xAF", "\xE2\x80\x8B", "\xEF\xBB\xBF", "\xE3\x80\x80"};

void unusualBlank(const CheckSubject& subject, Findings& findings) {
  subject.forEachLineAtAll([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.line().tokens.empty() || line.words()[0].text == "comment") return;
    for (const std::string blank : unusualBlanks) {
      const std::size_t at = line.text().find(blank, hasByteOrderMark(line) ? 3 : 0);
      if (at == std::string::npos) continue;
      findings.addAt(file, line, at + 1, blank.size(),
                     "this character looks like a blank, or like nothing, but belongs to the field "
                     "around it.");
    }
  });
}

void trailingComment(const CheckSubject& subject, Findings& findings) {
  subject.forEachLine([&](const CheckedFile& file, const ParsedLine& line) {
    if (line.keyword() == Keyword::None) return;
    for (std::size_t at = 1; at < line.words().size(); ++at) {
      if (line.words()[at].text[0] != '#') continue;
      findings.add(file, line, line.words()[at],
                   "a comment has a line of its own; here '#' and what follows are fields.");
      return;
    }
  });
}

}  // namespace

const std::vector<Rule>& formatRules() {
  static const std::vector<Rule> rules = {
      {"byte-order-mark", Severity::Error, "the first keyword has a byte order mark before it",
       byteOrderMarks},
      {"blank-before-colon", Severity::Error, "a keyword with a blank between it and its colon",
       blankBeforeColon},
      {"unknown-keyword", Severity::Error, "a keyword that is not known", unknownKeyword},
      {"no-colon", Severity::Warning, "a line without a colon, which is skipped silently", noColon},
      {"text-cut-off", Severity::Warning,
       "something behind a carriage return or a zero byte, which is dropped", textCutOff},
      {"unusual-blank", Severity::Warning,
       "a character that looks like a blank or like nothing, but is part of a field", unusualBlank},
      {"trailing-comment", Severity::Warning, "'#' behind fields, which begins no comment there",
       trailingComment},
  };
  return rules;
}

}  // namespace zerva
