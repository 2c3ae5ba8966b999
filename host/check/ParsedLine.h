#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/DirectiveLines.h"

namespace zerva {

/** A word of a line, and where it stands in the line as written. */
struct Word {
  std::string text;
  /** Counted from 1, in bytes. */
  std::size_t column = 1;

  bool empty() const { return text.empty(); }
};

/** What a line asks for. */
enum class Keyword {
  /** Nothing: it is empty, has no colon, or is a comment. */
  None,
  ServiceInstance,
  ServiceInfo,
  ServiceLegacy,
  InvokerInfo,
  ProxyInfo,
  StartProcess,
  /** Something that the configurator does not know. */
  Unknown,
};

/** @returns the words of the directives that do something, in the order of the list above. */
const std::vector<std::string>& directiveKeywords();

/** A line as the configurator cuts it, with the place of each field. */
class ParsedLine {
 public:
  explicit ParsedLine(DirectiveLine line);

  const DirectiveLine& line() const { return line_; }
  std::size_t number() const { return line_.number; }
  const std::string& text() const { return line_.text; }
  Keyword keyword() const { return keyword_; }

  /** Whether a service comes up, at once or later, that has a channel. */
  bool isChannelService() const;
  /** Whether any service comes up. */
  bool isService() const;
  /** Whether it records where the code for calls of an interface is. */
  bool isRecord() const;

  /**
   * The keyword and the fields, one for each token. An empty one that was not written stands behind
   * the last character.
   */
  const std::vector<Word>& words() const { return words_; }

  /** Whether "MT" or "ST" stands in the place of the mode, whatever the keyword is. */
  bool hasMode() const;
  /** Whether reading the fields ends the start. */
  bool breaksOff() const;

  /** @returns a field behind the mode, counted from 0; an empty one when there are not so many. */
  const Word& field(std::size_t index) const;
  const Word& library() const { return field(0); }
  const Word& creator() const { return field(1); }
  /** The channel of a service that has one. */
  const Word& channel() const { return field(2); }
  /** The protocol of a record. */
  const Word& protocol() const { return field(3); }

  /** The interface names, those of a legacy service as the configurator counts them. */
  std::vector<Word> interfaces() const;

  /** @returns the interface names as one text, as the configurator joins them; fill included. */
  std::string interfaceList() const;

 private:
  std::size_t firstField() const { return hasMode() ? 2 : 1; }
  std::size_t firstInterface() const;

  DirectiveLine line_;
  std::vector<Word> words_;
  Keyword keyword_;
  Word nothing_;
};

/**
 * Where each token of a line stands in it; has to agree with the way in which lines are cut.
 *
 * @param text the line as written.
 * @param tokens what it was cut into.
 */
std::vector<Word> placeTokens(const std::string& text, const std::vector<std::string>& tokens);

}  // namespace zerva
