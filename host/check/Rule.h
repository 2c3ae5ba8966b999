#pragma once

#include <string>
#include <vector>

#include "host/check/CheckSubject.h"
#include "host/check/Finding.h"

namespace zerva {

class Findings;

/** One kind of thing that is found, and the function that finds it. */
struct Rule {
  const char* code;
  Severity severity;
  /** What it is, for the list of codes. */
  const char* meaning;
  void (*look)(const CheckSubject& subject, Findings& findings);
};

/** Where a rule puts what it finds. */
class Findings {
 public:
  /** @param collected outlives this. */
  Findings(const Rule& rule, std::vector<Finding>& collected);

  /** Something about a word of a line. */
  void add(const CheckedFile& file, const ParsedLine& line, const Word& word,
           const std::string& text, const std::string& suggestion = {});

  /** Something about a part of a line; the column is counted from 1. */
  void addAt(const CheckedFile& file, const ParsedLine& line, std::size_t column,
             std::size_t length, const std::string& text, const std::string& suggestion = {});

  /** Something about a whole file. */
  void addToFile(const CheckedFile& file, const std::string& text);

 private:
  const Rule& rule_;
  std::vector<Finding>& collected_;
};

/** @returns the name as messages have it. */
std::string quoted(const std::string& name);

/** Lets a rule look, and adds what it finds. */
void apply(const Rule& rule, const CheckSubject& subject, std::vector<Finding>& collected);

/** @returns where a line of any of the files is, as "line 3" or, in another file, "FILE:3". */
std::string placeOf(const CheckedFile& file, const ParsedLine& line, const CheckedFile& seenFrom);

}  // namespace zerva
