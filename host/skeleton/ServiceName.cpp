#include "host/skeleton/ServiceName.h"

#include <algorithm>
#include <cstddef>

#include "host/skeleton/ContractNames.h"

namespace zerva {
namespace {

/** What the longest line of its directive files leaves room for, four times. */
constexpr std::size_t longestName = 60;

bool isUpper(char character) { return character >= 'A' && character <= 'Z'; }

bool isLetterOrDigit(char character) {
  return isUpper(character) || (character >= 'a' && character <= 'z') ||
         (character >= '0' && character <= '9');
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
  const auto& taken = contractNames;
  if (std::find(std::begin(taken), std::end(taken), name) != std::end(taken)) {
    return "zerva has a class of that name";
  }
  return "";
}

}  // namespace zerva
