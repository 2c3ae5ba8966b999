#include "host/skeleton/ServiceName.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "host/skeleton/ContractNames.h"
#include "host/skeleton/ReservedNames.h"

namespace zerva {
namespace {

/** What the longest line of its directive files leaves room for, four times. */
constexpr std::size_t longestName = 60;

bool isUpper(char character) { return character >= 'A' && character <= 'Z'; }

bool isLetterOrDigit(char character) {
  return isUpper(character) || (character >= 'a' && character <= 'z') ||
         (character >= '0' && character <= '9');
}

template <typename Names>
bool isAmong(const Names& names, const std::string& name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/** CTest has a target for each step of its three kinds of runs, as NightlyStart. */
bool isTestTarget(const std::string& name) {
  static constexpr std::string_view steps[] = {"",       "Start",      "Update",   "Configure",
                                               "Build",  "Test",       "Coverage", "MemCheck",
                                               "Submit", "MemoryCheck"};
  return std::any_of(std::begin(testTargets), std::end(testTargets), [&](std::string_view kind) {
    return name.compare(0, kind.size(), kind) == 0 && isAmong(steps, name.substr(kind.size()));
  });
}

}  // namespace

std::string whyNoServiceName(const std::string& name) {
  if (name.empty()) return "it is empty";
  if (!isUpper(name.front())) return "it does not begin with a capital letter, as in TideGauge";
  if (!std::all_of(name.begin(), name.end(), isLetterOrDigit)) {
    return "it has something else than letters and digits";
  }
  if (name.size() > longestName) {
    return "it is longer than " + std::to_string(longestName) + " characters";
  }
  if (isAmong(platformLibraries, name)) return "zerva has a library of that name";
  if (isAmong(contractNames, name)) return "zerva has a class of that name";
  if (libraryNames.find(" " + name + " ") != std::string_view::npos) {
    return "the C library has something of that name";
  }
  if (isAmong(buildTargets, name) || isTestTarget(name)) return "CMake has a target of that name";
  return "";
}

}  // namespace zerva
