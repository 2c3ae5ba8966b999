#include "tests/integration/Scenario.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/support/FileText.h"

namespace zerva {

Scenario::Scenario(std::filesystem::path folder, std::map<std::string, std::string> names)
    : folder_(std::move(folder)), names_(std::move(names)) {
  std::istringstream lines(readFile(folder_ / "scenario"));
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::size_t colon = line.find(": ");
    if (colon == std::string::npos) {
      throw std::runtime_error((folder_ / "scenario").string() + ": no step: " + line);
    }
    steps_.push_back({line.substr(0, colon), named(line.substr(colon + 2))});
  }
}

bool Scenario::expects(const std::string& file) const {
  return std::filesystem::exists(folder_ / file);
}

std::vector<std::string> Scenario::inBetween(const std::string& file) const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    const std::string name = entry.path().filename();
    if (name.rfind(file + ".", 0) == 0) names.push_back(name);
  }
  return names;
}

std::vector<std::string> Scenario::expected(const std::string& file) const {
  std::vector<std::string> expected;
  if (!expects(file)) return expected;
  std::istringstream lines(readFile(folder_ / file));
  for (std::string line; std::getline(lines, line);) expected.push_back(named(line));
  return expected;
}

std::vector<std::string> Scenario::words(const std::string& text) {
  std::vector<std::string> words;
  std::istringstream stream(text);
  for (std::string word; stream >> std::quoted(word);) words.push_back(word);
  return words;
}

std::string Scenario::named(std::string text) const {
  for (const auto& [name, value] : names_) {
    for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size()) {
      text.replace(at, name.size(), value);
    }
  }
  return text;
}

}  // namespace zerva
