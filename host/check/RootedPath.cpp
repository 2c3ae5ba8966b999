#include "host/check/RootedPath.h"

#include <deque>
#include <filesystem>

namespace zerva {
namespace {

/** As many links as the kernel follows. */
constexpr int mostLinks = 40;

}  // namespace

std::string rootedPath(const std::string& root, const std::string& path) {
  namespace fs = std::filesystem;
  if (root.empty()) return path;
  std::deque<fs::path> ahead;
  const auto walk = [&ahead](const fs::path& way) {
    const fs::path relative = way.relative_path();
    ahead.insert(ahead.begin(), relative.begin(), relative.end());
  };
  walk(path);
  fs::path reached = "/";
  int links = 0;
  while (!ahead.empty()) {
    const fs::path part = ahead.front();
    ahead.pop_front();
    if (part.empty() || part == ".") continue;
    if (part == "..") {
      reached = reached.parent_path();
      continue;
    }
    std::error_code error;
    const fs::path target = fs::read_symlink(root + (reached / part).string(), error);
    if (error || ++links > mostLinks) {
      reached /= part;
      continue;
    }
    if (target.is_absolute()) reached = "/";
    walk(target);
  }
  return root + reached.string();
}

}  // namespace zerva
