#include "host/check/NearMiss.h"

#include <algorithm>

namespace zerva {
namespace {

/** Names in a directive file have a line each at most; longer ones come from broken libraries. */
constexpr std::size_t longestCompared = 512;

/** How far off a name of this length may be, so that short ones are not guessed wildly. */
std::size_t farthest(std::size_t length) { return std::min<std::size_t>(length / 4, 3); }

/** The name without what nearly all of them end in. */
std::string stem(const std::string& name) {
  constexpr char ending[] = "Ifc";
  const std::size_t length = sizeof ending - 1;
  return name.size() > length && name.ends_with(ending) ? name.substr(0, name.size() - length)
                                                        : name;
}

constexpr std::size_t farthestInterface = 2;

}  // namespace

std::string lowered(const std::string& text) {
  std::string result = text;
  for (char& c : result) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return result;
}

std::size_t editDistance(const std::string& left, const std::string& right) {
  const std::string a = lowered(left);
  const std::string b = lowered(right);
  std::vector<std::size_t> before;
  std::vector<std::size_t> above(b.size() + 1);
  for (std::size_t column = 0; column <= b.size(); ++column) above[column] = column;
  for (std::size_t row = 1; row <= a.size(); ++row) {
    std::vector<std::size_t> current(b.size() + 1);
    current[0] = row;
    for (std::size_t column = 1; column <= b.size(); ++column) {
      const std::size_t replaced = above[column - 1] + (a[row - 1] == b[column - 1] ? 0 : 1);
      current[column] = std::min({above[column] + 1, current[column - 1] + 1, replaced});
      const bool exchanged =
          row > 1 && column > 1 && a[row - 1] == b[column - 2] && a[row - 2] == b[column - 1];
      if (exchanged) current[column] = std::min(current[column], before[column - 2] + 1);
    }
    before = std::move(above);
    above = std::move(current);
  }
  return above[b.size()];
}

std::string nearMiss(const std::string& text, const std::vector<std::string>& names) {
  std::string nearest;
  if (text.empty() || text.size() > longestCompared) return nearest;
  std::size_t least = farthest(text.size()) + 1;
  for (const std::string& name : names) {
    const std::size_t difference =
        name.size() > text.size() ? name.size() - text.size() : text.size() - name.size();
    if (name == text || difference >= least) continue;
    const std::size_t distance = editDistance(text, name);
    if (distance >= least) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

std::string nearInterface(const std::string& text, const std::vector<std::string>& names) {
  std::vector<std::string> stems;
  for (const std::string& name : names) stems.push_back(stem(name));
  const std::string near = nearMiss(stem(text), stems);
  if (near.empty() || editDistance(stem(text), near) > farthestInterface) return {};
  const auto at = std::find(stems.begin(), stems.end(), near) - stems.begin();
  return names[static_cast<std::size_t>(at)];
}

}  // namespace zerva
