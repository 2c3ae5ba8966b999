// Input: a directive file. All rules look it over that look at the file alone.

#include <string>

#include "host/check/ReadFile.h"
#include "host/check/RuleTable.h"
#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/MemoryFile.h"

using namespace zerva;
using namespace zerva::fuzz;

namespace {

/** Each field is where it is said to be. */
void requirePlaces(const ParsedLine& line) {
  const auto& tokens = line.line().tokens;
  require(line.words().size() == tokens.size(), "there is a place for each token");
  // The keyword may hold a blank that stands for several.
  for (std::size_t at = 1; at < tokens.size(); ++at) {
    const Word& word = line.words()[at];
    require(word.text == tokens[at], "a place is that of its token");
    require(word.column >= 1 && word.column <= line.text().size() + 1, "a place is in the line");
    require(line.text().compare(word.column - 1, word.text.size(), word.text) == 0,
            "a token stands in its place");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile memory(textOf(data, size));
  auto file = readCheckedFile(memory.path());
  require(file.has_value(), "the file can be read");
  for (const ParsedLine& line : file->lines) requirePlaces(line);
  const std::size_t lines = file->lines.size();
  CheckSubject subject;
  subject.files.push_back(std::move(*file));
  for (const Finding& finding : lookOver(subject)) {
    require(finding.line >= 1 && finding.line <= lines, "a finding is in a line of the file");
    const DirectiveLine& line = subject.files[0].lines[finding.line - 1].line();
    require(finding.column >= 1 && finding.column - 1 + finding.length <= line.length + 1,
            "what is meant is in its line");
    require(!finding.text.empty() && finding.text.back() == '.', "a finding is a sentence");
  }
  return 0;
}
