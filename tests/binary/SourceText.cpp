#include "tests/binary/SourceText.h"

#include <cctype>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace zerva {

namespace {

bool isWordCharacter(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_';
}

/** @returns where the comment or literal that begins at a position ends; the position if none. */
std::size_t endOfNonCode(const std::string& source, std::size_t at) {
  const std::string start = source.substr(at, 2);
  if (start == "//") {
    return std::min(source.find('\n', at), source.size());
  }
  if (start == "/*") {
    const std::size_t end = source.find("*/", at + 2);
    return end == std::string::npos ? source.size() : end + 2;
  }
  // A quote between digits separates thousands.
  if (start[0] == '"' || (start[0] == '\'' && (at == 0 || !isWordCharacter(source[at - 1])))) {
    std::size_t end = at + 1;
    while (end < source.size() && source[end] != start[0]) {
      end += source[end] == '\\' ? 2U : 1U;
    }
    return std::min(end + 1, source.size());
  }
  return at;
}

bool holdsWord(const std::string& code, const std::string& word) {
  const bool prefix = word.ends_with('*');
  const std::string text = prefix ? word.substr(0, word.size() - 1) : word;
  for (std::size_t at = code.find(text); at != std::string::npos; at = code.find(text, at + 1)) {
    const std::size_t end = at + text.size();
    const bool begins = at == 0 || !isWordCharacter(code[at - 1]);
    const bool ends = prefix || end == code.size() || !isWordCharacter(code[end]);
    if (begins && ends) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::string codeOnly(const std::string& source) {
  std::string code = source;
  std::size_t at = 0;
  while (at < source.size()) {
    const std::size_t end = endOfNonCode(source, at);
    for (std::size_t index = at; index < end; ++index) {
      if (code[index] != '\n') {
        code[index] = ' ';
      }
    }
    at = std::max(end, at + 1);
  }
  return code;
}

std::vector<std::string> findWords(const std::string& code, const std::vector<std::string>& words) {
  std::vector<std::string> found;
  for (const std::string& word : words) {
    if (holdsWord(code, word)) {
      found.push_back(word);
    }
  }
  return found;
}

std::vector<std::string> includesOf(const std::string& source) {
  std::vector<std::string> includes;
  std::istringstream lines(source);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t open = line.find_first_of("\"<");
    if (line.starts_with("#include") && open != std::string::npos) {
      includes.push_back(line.substr(open + 1, line.find_first_of("\">", open + 1) - open - 1));
    }
  }
  return includes;
}

std::vector<std::filesystem::path> sourcesBelow(const std::string& folder) {
  const char* tree = std::getenv("ZERVA_SOURCE_DIR");
  if (tree == nullptr) {
    throw std::runtime_error("ZERVA_SOURCE_DIR does not name the source tree; run through ctest");
  }
  std::vector<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::recursive_directory_iterator(std::filesystem::path(tree) / folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension == ".cpp" || extension == ".h") {
      files.push_back(entry.path());
    }
  }
  return files;
}

}  // namespace zerva
